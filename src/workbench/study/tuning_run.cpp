#include "workbench/study/tuning_run.h"

#include <algorithm>
#include <set>
#include <utility>

#include "core/csv.h"
#include "core/files/model_file.h"
#include "core/messages.h"
#include "core/text.h"
#include "study/row.h"
#include "study/setting.h"
#include "workbench/measure/theory_measurement.h"
#include "workbench/quiet.h"
#include "workbench/study/study_set_up.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

constexpr std::size_t TracePoints = 10000;

}  // namespace

TuningRun::TuningRun(TuneOptions options, Supervisor& supervisor,
                     const std::function<void()>& beforeModels)
    : options_(std::move(options)), supervisor_(supervisor) {
  for (const std::string& text : options_.Vary) {
    search_.Ranges.push_back(ParseVaryRange(text, VaryValues::Searched));
  }
  for (const std::string& text : options_.Require) search_.Goal.Requirements.emplace_back(text);
  if (!options_.Best.empty()) search_.Goal.Best = &NamedMeasure(options_.Best);
  if (search_.Goal.Requirements.empty() && !search_.Goal.Best) {
    throw UsageError("--require or --best is needed: a tuning for what?");
  }
  search_.MostRuns = options_.MostRuns.value_or(search_.MostRuns);
  if (search_.MostRuns < 1) throw UsageError("--runs must be at least 1");
  // What is asked of the loop comes from theory unless it is to be measured.
  if (AsksForLoop() && !options_.Measure.WithBode) options_.Measure.WithTheory = true;
  for (const RunMeasure* asked : Asked()) {
    CheckAskedFor("a tuning by", *asked, options_.Measure.Measured());
  }
  if (beforeModels) beforeModels();
  Check();
}

std::vector<const RunMeasure*> TuningRun::Asked() const {
  std::vector<const RunMeasure*> asked;
  for (const Requirement& one : search_.Goal.Requirements) asked.push_back(&one.Of());
  if (search_.Goal.Best) asked.push_back(search_.Goal.Best);
  return asked;
}

bool TuningRun::AsksForLoop() const {
  return std::ranges::any_of(Asked(), [](const RunMeasure* one) { return one->OfLoop(); });
}

bool TuningRun::AsksForMargins() const {
  return std::ranges::any_of(Asked(), [](const RunMeasure* one) {
    return one->Value == &RunReadings::GainMargin || one->Value == &RunReadings::PhaseMargin ||
           one->Value == &RunReadings::Sensitivity;
  });
}

void TuningRun::Check() {
  const auto model = OpenModel(Model(), supervisor_);
  CheckMeasurement(*model, options_.Measure, supervisor_);
  if (options_.Measure.WithTheory) {
    const Quiet quiet;
    CheckTheory([&] { return OpenModel(Model(), supervisor_); }, AsksForMargins());
  }
  StudyDesign ends;
  ends.Runs.resize(2);
  for (const StudyRange& range : search_.Ranges) {
    ends.Names.push_back(range.Name);
    ends.Runs[0].push_back(range.At(0.0));
    ends.Runs[1].push_back(range.At(1.0));
  }
  if (std::set(ends.Names.begin(), ends.Names.end()).size() < ends.Names.size()) {
    throw UsageError("--vary: each constant or generator setting once");
  }
  for (const std::string& name : ends.Names) {
    const ModelSetting setting = ModelSetting::Named(model->Bench(), name);
    units_.push_back(setting.Unit());
    if (!setting.IsChoice()) continue;
    throw UsageError("--vary " + name + ": a choice cannot be searched; \"study\" tries each");
  }
  Append(units_, UnitsOfMeasures(*model, options_.Measure, options_.Measure.Measured()));
  units_.emplace_back();  // of the reason
  Limit(&StudyRange::From, ApplyRun(model->Bench(), ends, 0));
  Limit(&StudyRange::To, ApplyRun(model->Bench(), ends, 1));
}

// Of what the model does not take nothing is searched.
void TuningRun::Limit(double StudyRange::*end, const AppliedRun& applied) {
  for (const std::string& remark : applied.Remarks) Note(remark);
  if (applied.Remarks.empty()) return;
  for (std::size_t i = 0; i < applied.Settings.size(); ++i) {
    search_.Ranges[i].*end = ParseNumber(applied.Settings[i]).value_or(search_.Ranges[i].*end);
  }
  for (const StudyRange& range : search_.Ranges) {
    const std::string fault = range.Fault();
    if (!fault.empty()) throw UsageError("--vary " + range.Name + ": " + fault);
  }
}

// With these values, told as the model took them.
std::unique_ptr<ZelModel> TuningRun::Make(std::vector<std::string>& values) const {
  auto model = OpenModel(Model(), supervisor_);
  StudyDesign design;
  for (const StudyRange& range : search_.Ranges) design.Names.push_back(range.Name);
  design.Runs.push_back(values);
  values = ApplyRun(model->Bench(), design, 0).Settings;
  return model;
}

Tuning TuningRun::Measure(const std::vector<std::string>& values) {
  const Quiet quiet;
  Tuning tuning{values, {}};
  response_ = {TracePoints, {}, {}};
  try {
    tuning.Readings =
        ReadRun([&] { return Make(tuning.Values); }, options_.Measure, supervisor_, &response_);
  } catch (const WorkFault& fault) {
    tuning.Readings.Reasons.emplace_back(fault.what());
  }
  return tuning;
}

Tuning TuningRun::Run(const std::function<bool(int runs, const Tuning& best)>& goOn) {
  search_.Measure = [this](const auto& values) { return Measure(values); };
  search_.GoOn = goOn;
  return Tune(search_);
}

void TuningRun::CheckMet(const Tuning& best) const {
  if (!Met(best)) throw StoppedError(WhatIsInTheWay(best));
}

std::string TuningRun::WhatIsInTheWay(const Tuning& best) const {
  const auto unmet = search_.Goal.Unmet(best.Readings);
  if (unmet.empty()) {
    return std::string("no tuning that was tried has a ") + search_.Goal.Best->Caption +
           " to be best: " + Joined(best.Readings.Reasons);
  }
  std::string text = "no tuning that was tried meets ";
  for (const Requirement* requirement : unmet) {
    text += (requirement == unmet.front() ? "" : " and ") + requirement->Text();
  }
  text += "; of the one that comes nearest ";
  for (const Requirement* requirement : unmet) {
    text += (requirement == unmet.front() ? "" : ", ") + requirement->Found(best.Readings);
  }
  return text;
}

std::vector<std::string> TuningRun::Captions() const {
  std::vector<std::string> captions;
  for (const StudyRange& range : search_.Ranges) captions.push_back(range.Name);
  Append(captions, MeasureCaptions(options_.Measure.Measured()));
  captions.emplace_back(ReasonCaption);
  return captions;
}

std::vector<std::string> TuningRun::Fields(const Tuning& best) const {
  std::vector<std::string> fields = best.Values;
  Append(fields, MeasureFields(MeasureValues(best.Readings, options_.Measure.Measured())));
  std::vector<std::string> remarks = best.Readings.Reasons;
  Append(remarks, best.Readings.Warnings);
  fields.push_back(Joined(remarks));
  return fields;
}

void TuningRun::Save(Tuning best, const std::string& path) const {
  const Quiet quiet;
  if (!SaveModelFile(*Make(best.Values), path)) throw FileError("");
}

}  // namespace torvane
