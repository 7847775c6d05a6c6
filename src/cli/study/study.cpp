#include "cli/study/study.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "cli/command_error.h"
#include "cli/io/interrupt.h"
#include "cli/io/pictures.h"
#include "cli/io/quiet.h"
#include "cli/model/model_file_loading.h"
#include "cli/study/study_result.h"
#include "cli/study/study_set_up.h"
#include "core/messages.h"
#include "core/text.h"
#include "study/requirement.h"
#include "study/row.h"
#include "study/run.h"
#include "study/shares.h"
#include "study/study_fault.h"
#include "study/workers.h"

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
  bool Traced() const { return !options_.Picture.empty() && options_.Map.Measure.empty(); }
  MeasureSet Set() const;
  std::string Head() const;
  /// Head and rows as they will be, but for the measures.
  std::string TableToCome() const;
  /// Nothing after an interrupt.
  std::optional<RunResult> Measure(std::size_t run) const;

  StudyOptions options_;
  Console& console_;
  StudyDesign design_;
  std::vector<std::size_t> share_;
  int processes_ = 1;
  std::unique_ptr<ZelModel> first_;
  StudyIdentity identity_;
  std::vector<Requirement> requirements_;
};

Study::Study(StudyOptions options, Console& console)
    : options_(std::move(options)), console_(console), design_(MakeDesign(options_)) {
  CheckPictureFile(options_.Picture);
  CheckOutputs(options_.Out, options_.Picture, options_.Vary.empty() ? options_.Files[0] : "");
  share_ = RunsOfShare(options_.Shard, design_.Runs.size());
  processes_ = Processes(options_);
  ModelOptions& model = options_.Measure.Bode.Response.Model;
  model.Model = options_.Files.back();
  if (NamesModelFile(model.Model)) model.FileText = ReadModelFile(model.Model);
  first_ = OpenModel(model, console_);
  CheckMeasurement(*first_, options_.Measure, console_);
  for (const std::string& text : options_.Require) {
    requirements_.emplace_back(text);
    CheckAskedFor("--require", requirements_.back().Of(), Set());
  }
  CheckStudyBest(options_, Set());
  const std::string& mapped = options_.Map.Measure;
  if (!mapped.empty()) CheckMeasured("--map", NamedMeasure(mapped), Set());
  identity_ = IdentityOf(options_, design_, *first_);
  CheckDesign(design_, *first_);
  CheckStudyPicture(options_, TableToCome());
}

MeasureSet Study::Set() const {
  MeasureSet set = options_.Measure.Measured();
  set.Requirements = !options_.Require.empty();
  return set;
}

std::string Study::Head() const {
  return HeadLine(design_.Names, MeasureCaptions(Set()));
}

std::string Study::TableToCome() const {
  std::string table = Head();
  if (options_.Picture.empty()) return table;
  StudyRow row;
  row.Measures.resize(MeasureCaptions(Set()).size());
  for (const std::size_t run : share_) {
    row.Run = run;
    row.Settings = ApplyRun(first_->Bench(), design_, run).Settings;
    table += RowLine(row);
  }
  return table;
}

std::optional<RunResult> Study::Measure(std::size_t run) const {
  const Quiet quiet;
  const MakeModel make = [&] { return OpenModel(options_.Measure.Bode.Response.Model, console_); };
  const MeasureModel measure = [&](const MakeModel& ofRun, StudyTrace* trace) {
    RunReadings readings = ReadRun(ofRun, options_.Measure, console_, false, trace);
    if (!requirements_.empty()) readings.Meets = MeetsAll(requirements_, readings);
    return readings;
  };
  RunResult result = RunOfStudy(design_, run, make, measure, Set(), Traced());
  if (InterruptGuard::Interrupted()) return {};
  return result;
}

void Study::Run() {
  StudyResult result(options_.Out, identity_, Head());
  const std::size_t before = result.RowCount();
  if (before > 0) Note(Count(before, share_.size()) + " stand already");
  // Responses are not kept: a picture of them takes all runs again.
  std::vector<std::size_t> jobs;
  for (const std::size_t run : share_) {
    if (Traced() || !result.Has(run)) jobs.push_back(run);
  }
  std::size_t done = share_.size() - jobs.size();
  StudyResponses responses;
  std::size_t failed = 0;
  const auto measure = [&](std::size_t run) -> std::optional<std::string> {
    const std::optional<RunResult> measured = Measure(run);
    if (!measured) return {};
    return measured->Packed();
  };
  const auto take = [&](std::size_t run, const std::string& packed) {
    RunResult measured = RunResult::Unpacked(packed);
    ++done;
    if (!result.Has(run)) result.Append(measured.Row);
    if (!measured.Row.HasMeasures()) ++failed;
    if (Traced()) responses.Runs.push_back(std::move(measured.Trace));
  };
  try {
    const InterruptGuard guard;
    Progress progress(console_, share_.size(), done,
                      Console::CanShowProgress(options_.Out.empty()));
    DoInWorkers(jobs, processes_, measure, take, [&] {
      progress.Show(done);
      result.FlushNowAndThen();
      return !InterruptGuard::Interrupted();
    });
  } catch (const StudyFault& fault) {
    throw StudyFault(fault.What(),
                     fault.what() + (" after " + Count(done, share_.size())) + result.HowToGoOn());
  }
  if (failed > 0) Note(Count(failed, jobs.size()) + " have no measures; their rows say why");
  const std::string table = result.Table();
  result.Close();
  TellStudyBest(options_, table);
  if (options_.Picture.empty()) return;
  responses.Signal = options_.Measure.Bode.Response.Output;
  responses.TimeUnit = first_->Bench().TimeVar()->Unit();
  WriteStudyPicture(options_, table, std::move(responses));
}

}  // namespace

void RunStudy(StudyOptions options, Console& console) {
  Study(std::move(options), console).Run();
}

void MergeStudies(const StudyOptions& options) {
  if (options.Files.empty()) throw UsageError("--merge needs the results of shares");
  CheckStudyBest(options, {true, true, true, true});
  CheckPictureFile(options.Picture);
  for (const std::string& path : options.Files) {
    CheckOutputs(options.Out, options.Picture, path);
  }
  Shares shares;
  for (const std::string& path : options.Files) shares.Add(path);
  const std::string table = shares.Table();
  if (options.Map.Measure.empty() && !options.Picture.empty()) {
    throw UsageError("--merge draws a map alone; --map names its measure");
  }
  CheckStudyPicture(options, table);
  ResultFile file(options.Out);
  file.Write(table);
  file.Close();
  TellStudyBest(options, table);
  if (!options.Picture.empty()) WriteStudyPicture(options, table, {});
}

}  // namespace torvane::cli
