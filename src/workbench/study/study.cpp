#include "workbench/study/study.h"

#include "study/run.h"
#include "study/workers.h"
#include "workbench/model/model_file_loading.h"
#include "workbench/quiet.h"
#include "workbench/study/study_set_up.h"

namespace torvane {

void CheckStudyBest(const StudyOptions& options, const MeasureSet& set) {
  if (!options.Best.empty()) CheckAskedFor("--best", NamedMeasure(options.Best), set);
}

Study::Study(StudyOptions options, Supervisor& supervisor)
    : options_(std::move(options)), supervisor_(supervisor), design_(MakeDesign(options_)) {
  share_ = RunsOfShare(options_.Shard, design_.Runs.size());
  processes_ = Processes(options_);
  ModelOptions& model = options_.Measure.Bode.Response.Model;
  model.Model = options_.Files.back();
  if (!model.FileText && NamesModelFile(model.Model)) model.FileText = ReadModelFile(model.Model);
  first_ = OpenModel(model, supervisor_);
  CheckMeasurement(*first_, options_.Measure, supervisor_);
  for (const std::string& text : options_.Require) {
    requirements_.emplace_back(text);
    CheckAskedFor("--require", requirements_.back().Of(), Measures());
  }
  CheckStudyBest(options_, Measures());
  identity_ = IdentityOf(options_, design_, *first_);
  CheckDesign(design_, *first_);
  identity_.Add(UnitsPart, UnitsOfStudy(options_, design_, Measures(), *first_));
}

MeasureSet Study::Measures() const {
  MeasureSet set = options_.Measure.Measured();
  set.Requirements = !options_.Require.empty();
  return set;
}

std::string Study::Head() const {
  return HeadLine(design_.Names, MeasureCaptions(Measures()));
}

std::string Study::TableToCome() {
  std::string table = Head();
  StudyRow row;
  row.Measures.resize(MeasureCaptions(Measures()).size());
  for (const std::size_t run : share_) {
    row.Run = run;
    row.Settings = ApplyRun(first_->Bench(), design_, run).Settings;
    table += RowLine(row);
  }
  return table;
}

std::optional<RunResult> Study::Measure(std::size_t run, bool traced) const {
  const Quiet quiet;
  const MakeModel make = [&] {
    return OpenModel(options_.Measure.Bode.Response.Model, supervisor_);
  };
  const MeasureModel measure = [&](const MakeModel& ofRun, StudyTrace* trace) {
    RunReadings readings = ReadRun(ofRun, options_.Measure, supervisor_, trace);
    if (!requirements_.empty()) readings.Meets = MeetsAll(requirements_, readings);
    return readings;
  };
  RunResult result = RunOfStudy(design_, run, make, measure, Measures(), traced);
  if (supervisor_.Interrupted()) return {};
  return result;
}

void Study::Run(const StudyCourse& course, bool traced) {
  std::vector<std::size_t> jobs;
  for (const std::size_t run : share_) {
    if (!course.Has || !course.Has(run)) jobs.push_back(run);
  }
  const auto measure = [&](std::size_t run) -> std::optional<std::string> {
    const std::optional<RunResult> measured = Measure(run, traced);
    if (!measured) return {};
    return measured->Packed();
  };
  const auto take = [&](std::size_t /*run*/, const std::string& packed) {
    course.Take(RunResult::Unpacked(packed));
  };
  DoInWorkers(jobs, processes_, measure, take, course.GoOn);
}

}  // namespace torvane
