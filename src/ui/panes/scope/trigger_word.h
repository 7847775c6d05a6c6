#pragma once

#include <QLabel>

#include "instruments/scope/scope.h"

namespace torvane {

/// Says in a word, beside the trigger's lamp, what a scope is doing: "Triggered", "Auto", "Cont",
/// "Waiting" or "Stopped". In a window without room for it the word is left out.
class TriggerWord : public QObject {
 public:
  /// Label and scope must outlive it.
  TriggerWord(QLabel& label, const ZelScope& scope);

  /// To be called with each display refresh: a model whose time stands still is stopped.
  void Show();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum class Word { Stopped, Waiting, Auto, Cont, Triggered };

  Word Present() const;
  void Write();

  QLabel& label_;
  const ZelScope& scope_;
  Word word_ = Word::Stopped;
  double time_ = 0.0;  // of the model at the last refresh
  std::uint64_t automaticSweeps_ = 0;
};

}  // namespace torvane
