#include "cli/study/study.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "cli/command_error.h"
#include "cli/model_file_loading.h"
#include "cli/quiet.h"
#include "cli/scope_run.h"
#include "cli/study/run_result.h"
#include "cli/study/study_result.h"
#include "cli/study/study_set_up.h"
#include "cli/study/workers.h"
#include "core/csv.h"
#include "core/files/model_file.h"
#include "core/files/seal.h"
#include "core/messages.h"
#include "core/text.h"
#include "core/version.h"

namespace torvane::cli {
namespace {

std::string Count(std::size_t done, std::size_t all) {
  return std::to_string(done) + " of " + std::to_string(all) + " runs";
}

/// "N of M runs", and when they are likely to be done.
class Progress {
 public:
  Progress(Console& console, std::size_t all, std::size_t before, bool shown)
      : console_(console), all_(all), before_(before), shown_(shown) {}
  ~Progress() { console_.ShowProgress(""); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(std::size_t done) {
    const auto now = std::chrono::steady_clock::now();
    if (!shown_ || now < next_) return;
    next_ = now + std::chrono::milliseconds(200);
    std::string text = Count(done, all_);
    if (done > before_) {
      const double seconds = std::chrono::duration<double>(now - start_).count();
      const double left =
          seconds * static_cast<double>(all_ - done) / static_cast<double>(done - before_);
      text += ", about " + FormatGeneral(std::ceil(left), 6, 2) + " s left";
    }
    console_.ShowProgress(text);
  }

 private:
  Console& console_;
  std::size_t all_;
  std::size_t before_;
  bool shown_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point next_ = start_ + std::chrono::milliseconds(400);
};

/// A study that has been checked and can be run.
class Study {
 public:
  Study(StudyOptions options, Console& console);
  void Run();

 private:
  bool Traced() const { return !options_.Picture.empty() && options_.Map.empty(); }
  std::string Header() const;
  /// Number and settings of a run, as its row begins.
  std::vector<std::string> Settings(std::size_t run) const;
  std::string RowBegin(std::size_t row) const;
  /// Rows whose measures are empty.
  std::string RowsToCome() const;
  std::string Identity() const;
  RunResult Measure(std::size_t run) const;
  StudyTrace ResponseOf(const RunMeasures& measures) const;

  StudyOptions options_;
  Console& console_;
  StudyDesign design_;
  std::vector<std::size_t> share_;
  int processes_ = 1;
  std::unique_ptr<ZelModel> first_;
  std::string description_;  ///< of all that decides the results but the runs
};

Study::Study(StudyOptions options, Console& console)
    : options_(std::move(options)), console_(console), design_(MakeDesign(options_)) {
  CheckStudyPicture(options_);
  CheckOutputs(options_.Out, options_.Picture, options_.Vary.empty() ? options_.Files[0] : "");
  share_ = RunsOfShare(options_.Shard, design_.Runs.size());
  processes_ = Processes(options_);
  ModelOptions& model = options_.Measure.Bode.Response.Model;
  model.Model = options_.Files.back();
  if (NamesModelFile(model.Model)) model.FileText = ReadModelFile(model.Model);
  first_ = OpenModel(model, console_);
  CheckMeasurement(*first_, options_.Measure, console_);
  const ResponseOptions& signals = options_.Measure.Bode.Response;
  description_ = std::string(Version()) + "\n" + ModelFileText(*first_) + signals.Input + "\n" +
                 signals.Output + "\n" + FormatShortest(options_.Measure.Until) + "\n";
  CheckRuns(design_, *first_, console_);
  CheckStudyPicture(options_, Header() + RowsToCome());
}

std::string Study::Header() const {
  std::vector<std::string> header{RunCaption};
  if (!options_.Shard.empty()) header[0] += ShareCaption + std::to_string(design_.Runs.size());
  Append(header, design_.Names);
  Append(header, MeasureCaptions(options_.Measure));
  header.emplace_back("Reason");
  return CsvLine(header);
}

std::vector<std::string> Study::Settings(std::size_t run) const {
  std::vector<std::string> fields{std::to_string(run + 1)};
  Append(fields, design_.Runs[run]);
  return fields;
}

std::string Study::RowBegin(std::size_t row) const {
  if (row >= share_.size()) return {};
  std::string line = CsvLine(Settings(share_[row]));
  line.back() = ',';
  return line;
}

std::string Study::RowsToCome() const {
  const std::string measures(MeasureCaptions(options_.Measure).size(), ',');
  std::string rows;
  for (std::size_t row = 0; row < share_.size(); ++row) rows += RowBegin(row) + measures + "\n";
  return rows;
}

// One line: what decides a result decides its checksum.
std::string Study::Identity() const {
  std::string all = description_ + Header() + RowsToCome();
  const std::size_t length = all.size();
  return "Torvane study," + Sealed(std::move(all)).substr(length);
}

RunResult Study::Measure(std::size_t run) const {
  const Quiet quiet;
  RunResult result;
  std::vector<std::string> fields(MeasureCaptions(options_.Measure).size());
  std::string reason;
  try {
    const MakeModel make = [&] {
      auto model = OpenModel(options_.Measure.Bode.Response.Model, console_);
      Apply(model->Bench(), design_, run);
      return model;
    };
    const RunMeasures measures = MeasureRun(make, options_.Measure, console_, false);
    fields = measures.Fields;
    if (Traced()) result.Trace = ResponseOf(measures);
  } catch (const std::exception& error) {
    reason = error.what();
    std::replace(reason.begin(), reason.end(), '\n', ' ');
  }
  std::vector<std::string> row = Settings(run);
  Append(row, fields);
  row.push_back(reason);
  result.Row = CsvLine(row);
  return result;
}

// The model that was built to check the options has the same channels.
StudyTrace Study::ResponseOf(const RunMeasures& measures) const {
  const ZelScope& scope = FirstScope(first_->Bench());
  const ScopeScreen& screen = measures.Screen;
  const double scale = scope.TimeChannel().Signal().Multiplier();
  const double start = screen.EventTime.value_or(screen.Left);
  StudyTrace trace;
  for (const double time : screen.Time) {
    trace.Times.push_back(static_cast<float>(scale * (time - start)));
  }
  for (std::size_t k = 0; k < screen.Values.size(); ++k) {
    const Variable& signal = scope.Channels()[k]->Signal();
    if (signal.Name() != options_.Measure.Bode.Response.Output) continue;
    for (const float value : screen.Values[k]) {
      trace.Values.push_back(static_cast<float>(signal.Multiplier() * value));
    }
  }
  return trace;
}

void Study::Run() {
  StudyResult result(options_.Out, Header(), Identity(),
                     [this](std::size_t row) { return RowBegin(row); });
  const std::size_t before = result.RowCount();
  if (before > 0) Note(Count(before, share_.size()) + " stand already");
  // Responses are not kept: a picture of them takes all runs again.
  std::size_t done = Traced() ? 0 : before;
  const std::vector<std::size_t> jobs(share_.begin() + static_cast<std::ptrdiff_t>(done),
                                      share_.end());
  StudyResponses responses;
  std::size_t failed = 0;
  const auto take = [&](std::size_t, const std::string& packed) {
    RunResult run = RunResult::Unpacked(packed);
    if (done++ >= before) result.Append(run.Row);
    if (!run.Row.ends_with(",\n")) ++failed;
    if (Traced()) responses.Runs.push_back(std::move(run.Trace));
  };
  try {
    Progress progress(console_, share_.size(), done,
                      Console::CanShowProgress(options_.Out.empty()));
    DoInWorkers(
        jobs, processes_, [&](std::size_t run) { return Measure(run).Packed(); }, take,
        [&] { progress.Show(done); });
  } catch (const CommandError& error) {
    throw CommandError(
        error.Code(), error.what() + (" after " + Count(done, share_.size())) + result.HowToGoOn());
  }
  if (failed > 0) Note(Count(failed, jobs.size()) + " have no measures; their rows say why");
  const std::string table = result.Table();
  result.Close();
  if (options_.Picture.empty()) return;
  responses.Signal = options_.Measure.Bode.Response.Output;
  responses.TimeUnit = FirstScope(first_->Bench()).TimeChannel().Signal().Unit();
  WriteStudyPicture(options_, table, std::move(responses));
}

}  // namespace

void RunStudy(StudyOptions options, Console& console) {
  Study(std::move(options), console).Run();
}

}  // namespace torvane::cli
