#include "ui/session/tuning_run.h"

#include <sys/prctl.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <csignal>
#include <utility>

#include "core/csv_table.h"
#include "core/files/atomic_save.h"
#include "core/files/loop_record.h"
#include "core/text.h"

namespace torvane {

namespace {

constexpr int LastRunMilliseconds = 3000;  // milliseconds that the last run may take
constexpr std::size_t OfTheSearch = 2;     // columns: how many runs, and whether the goal is met
const QString Program = QStringLiteral("torvane-cli");

// Beside this program, as they are installed, else wherever the system finds it.
QString FindProgram() {
  const QString beside =
      QStandardPaths::findExecutable(Program, {QCoreApplication::applicationDirPath()});
  return beside.isEmpty() ? QStandardPaths::findExecutable(Program) : beside;
}

QStringList ArgumentsOf(const TuningTask& task, const QString& model, const QString& response) {
  const auto text = [](const std::string& from) { return QString::fromStdString(from); };
  QStringList all{QStringLiteral("tune"),
                  model,
                  QStringLiteral("--progress"),
                  QStringLiteral("--trace"),
                  response,
                  QStringLiteral("--command"),
                  text(task.Command),
                  QStringLiteral("--response"),
                  text(task.Response),
                  QStringLiteral("--until"),
                  text(task.Until),
                  QStringLiteral("--runs"),
                  QString::number(task.MostRuns)};
  for (const StudyRange& range : task.Ranges) {
    all << QStringLiteral("--vary")
        << text(range.Name + "=" + FormatShortest(range.From) + ":" + FormatShortest(range.To) +
                (range.Log ? ":log" : ""));
  }
  for (const std::string& one : task.Requirements) all << QStringLiteral("--require") << text(one);
  if (!task.Best.empty()) all << QStringLiteral("--best") << text(task.Best);
  return all;
}

// An own loop's text goes beside the model file, which then names that.
bool SaveModel(const TuningTask& task, const QTemporaryDir& folder, const QString& model) {
  std::string text = task.Model;
  if (!task.LoopText.empty()) {
    const std::string record = "Loop," + LoopFileIn(text);
    const std::string loop = folder.filePath(QStringLiteral("loop.mo")).toStdString();
    text.replace(text.find(record), record.size(), "Loop," + loop);
    if (!SaveAtomically(loop, task.LoopText)) return false;
  }
  return SaveAtomically(model.toStdString(), text);
}

}  // namespace

TuningRun::TuningRun(QObject* parent) : QObject(parent) {}

TuningRun::~TuningRun() {
  Abandon();
}

void TuningRun::Start(const TuningTask& task) {
  Abandon();
  varied_ = task.Ranges.size();
  captions_.clear();
  last_.clear();
  unread_.clear();
  folder_ = std::make_unique<QTemporaryDir>();
  const QString model = folder_->filePath(QStringLiteral("model.tvf"));
  const QString program = FindProgram();
  if (program.isEmpty()) {
    emit Ended(QStringLiteral("the program %1, which makes the runs, is missing: it is neither "
                              "beside this one nor where the system finds programs")
                   .arg(Program));
    return;
  }
  if (!SaveModel(task, *folder_, model)) {
    emit Ended(QStringLiteral("there is no room for the search in %1").arg(folder_->path()));
    return;
  }
  process_ = new QProcess(this);
  process_->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  connect(process_, &QProcess::readyReadStandardOutput, this, &TuningRun::ReadLines);
  connect(process_, &QProcess::finished, this, &TuningRun::Finish);
  connect(process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) Finish();
  });
  process_->start(program,
                  ArgumentsOf(task, model, folder_->filePath(QStringLiteral("response.csv"))));
}

void TuningRun::Stop() {
  if (!process_) return;
  process_->terminate();
  QTimer::singleShot(LastRunMilliseconds, process_, &QProcess::kill);
}

void TuningRun::Abandon() {
  QProcess* const left = std::exchange(process_, nullptr);
  if (!left) return;
  left->disconnect(this);
  left->kill();
  left->waitForFinished();
  delete left;
}

void TuningRun::ReadLines() {
  unread_ += process_->readAllStandardOutput();
  const qsizetype end = unread_.lastIndexOf('\n') + 1;
  for (const CsvRow& row : ParseCsv({unread_.constData(), static_cast<std::size_t>(end)})) {
    if (captions_.empty()) {
      captions_ = row.Fields;
    } else if (row.Fields.size() == captions_.size()) {
      TakeLine(row.Fields);
    }
  }
  unread_.remove(0, end);
}

void TuningRun::TakeLine(const std::vector<std::string>& fields) {
  TuningProgress progress;
  progress.Runs = ParseInteger(fields[0]).value_or(0);
  progress.Met = fields[1] == "1";
  for (std::size_t i = OfTheSearch; i < fields.size(); ++i) {
    (i < OfTheSearch + varied_ ? progress.Values : progress.Measures)[captions_[i]] = fields[i];
  }
  emit Progress(progress);
  const bool better =
      !std::equal(fields.begin() + OfTheSearch, fields.end(), last_.begin(), last_.end());
  last_.assign(fields.begin() + OfTheSearch, fields.end());
  if (better) emit ResponseFound(folder_->filePath(QStringLiteral("response.csv")));
}

void TuningRun::Finish() {
  ReadLines();
  QString said = QString::fromUtf8(process_->readAllStandardError()).trimmed();
  if (said.isEmpty() && process_->exitStatus() == QProcess::CrashExit)
    said = process_->errorString();
  process_->deleteLater();
  process_ = nullptr;
  emit Ended(said.remove(QStringLiteral("Error: ")));
}

}  // namespace torvane
