#pragma once

#include <QObject>
#include <QProcess>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "study/design.h"

namespace torvane {

/// What a tuning is looked for, as torvane-cli's `tune` takes it.
struct TuningTask {
  std::string Model;     ///< a model file's text
  std::string LoopText;  ///< of an own loop, as it runs; its file may hold another one, or be gone
  std::string Command;
  std::string Response;
  std::vector<StudyRange> Ranges;
  std::vector<std::string> Requirements;  ///< "Overshoot<=10"
  std::string Best;                       ///< the measure that is to be best; empty for none
  std::string Until;                      ///< of a run after its step, seconds
  int MostRuns = 200;
};

/// How far a search has come.
struct TuningProgress {
  int Runs = 0;
  bool Met = false;                             ///< by the best so far, all that is required
  std::map<std::string, std::string> Values;    ///< of its constants
  std::map<std::string, std::string> Measures;  ///< by their captions, as far as they can be told
};

/// A search for a tuning in a process of its own, for what the classes of models remember belongs
/// to the model that runs in this one. It ends with this object, and with this process however that
/// ends.
class TuningRun : public QObject {
  Q_OBJECT

 public:
  explicit TuningRun(QObject* parent);
  ~TuningRun() override;

  /// Ended follows, at once where the search cannot begin.
  void Start(const TuningTask& task);
  bool IsRunning() const { return process_ != nullptr; }
  /// The run in progress is the last one; Ended follows.
  void Stop();
  /// Nothing follows.
  void Abandon();

 signals:
  void Progress(const TuningProgress& progress);
  /// There is a better one, whose response stands in that file, as ReadTraceFile reads it.
  void ResponseFound(const QString& file);
  /// What is said of the end: empty, or why there is no tuning as it was asked for.
  void Ended(const QString& fault);

 private:
  void ReadLines();
  void TakeLine(const std::vector<std::string>& fields);
  void Finish();

  std::unique_ptr<QTemporaryDir> folder_;
  QProcess* process_ = nullptr;
  QByteArray unread_;
  std::size_t varied_ = 0;  ///< how many constants
  std::vector<std::string> captions_;
  std::vector<std::string> last_;  ///< of the best so far
};

}  // namespace torvane
