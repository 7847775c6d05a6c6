#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <string>

namespace torvane {

class ModelTheory;
class Session;

/// What theory says beside the session's model, for the analysers whose view asks for it and for
/// panes: a few times a second, once for whatever has changed meanwhile.
class LiveTheory : public QObject {
  Q_OBJECT

 public:
  /// The session must outlive it.
  explicit LiveTheory(Session& session);
  ~LiveTheory() override;

  /// Whether somebody beside the analysers wants the linear model.
  void SetWanted(bool wanted) { wanted_ = wanted; }
  /// Of the present model; nullptr before somebody wanted it.
  const ModelTheory* Model() const;

 signals:
  /// The linear model is another one, or there is none any more.
  void Changed();

 private:
  void Leave();
  void Take();
  void Follow();
  /// True when the linear model is another one.
  bool Update();

  struct Followed;

  Session& session_;
  QTimer timer_;
  std::unique_ptr<Followed> followed_;  // of the present model
  bool wanted_ = false;
  std::string seen_;  // of the set-up
  bool slow_ = false;
  int still_ = 0;  // ticks that the set-up has been the same for
};

}  // namespace torvane
