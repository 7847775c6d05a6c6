#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

#include "cli/command_error.h"
#include "cli/commands/commands.h"
#include "cli/io/interrupt.h"
#include "cli/io/number_options.h"
#include "cli/io/quiet.h"
#include "cli/io/result_file.h"
#include "cli/measure/measurement.h"
#include "cli/measure/theory_measurement.h"
#include "cli/model/model_file_loading.h"
#include "cli/model/model_options.h"
#include "cli/study/study_set_up.h"
#include "core/csv.h"
#include "core/files/model_file.h"
#include "core/messages.h"
#include "core/text.h"
#include "study/setting.h"
#include "study/study_pictures.h"
#include "study/tuning.h"

namespace torvane::cli {
namespace {

constexpr std::size_t TracePoints = 10000;

struct TuneOptions {
  MeasureOptions Measure;
  std::vector<std::string> Vary;
  std::vector<std::string> Require;
  std::string Best;
  std::optional<int> MostRuns;
  std::string Save;
  bool Progress = false;
  std::string Trace;
};

/// A search on a model whose options have been checked.
class TuneRun {
 public:
  TuneRun(const TuneOptions& options, Console& console) : options_(options), console_(console) {
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
    Check();
  }

  void Run() {
    search_.Measure = [this](const auto& values) { return Measure(values); };
    search_.GoOn = [this](int runs, const Tuning& best) { return GoOn(runs, best); };
    const InterruptGuard guard;
    ResultFile output("");
    if (options_.Progress) output.Write(CsvLine(Captions()));
    output_ = &output;
    const Tuning best = Tune(search_);
    console_.ShowProgress("");
    if (!options_.Progress) output.Write(CsvLine(Captions()) + CsvLine(Fields(best)));
    output.Close();
    if (!search_.Goal.Met(best.Readings)) throw StoppedError(WhatIsInTheWay(best));
    if (!options_.Save.empty()) Save(best);
    if (InterruptGuard::Interrupted()) throw StoppedError("interrupted; this is the best so far");
  }

 private:
  std::vector<const RunMeasure*> Asked() const {
    std::vector<const RunMeasure*> asked;
    for (const Requirement& one : search_.Goal.Requirements) asked.push_back(&one.Of());
    if (search_.Goal.Best) asked.push_back(search_.Goal.Best);
    return asked;
  }

  bool AsksForLoop() const {
    return std::ranges::any_of(Asked(), [](const RunMeasure* one) { return one->OfLoop(); });
  }

  bool AsksForMargins() const {
    return std::ranges::any_of(Asked(), [](const RunMeasure* one) {
      return one->Value == &RunReadings::GainMargin || one->Value == &RunReadings::PhaseMargin ||
             one->Value == &RunReadings::Sensitivity;
    });
  }

  ModelOptions& Model() { return options_.Measure.Bode.Response.Model; }

  void Check() {
    CheckOutputs(options_.Save, options_.Trace, NamesModelFile(Model().Model) ? Model().Model : "");
    const auto model = OpenModel(Model(), console_);
    CheckMeasurement(*model, options_.Measure, console_);
    if (options_.Measure.WithTheory) {
      const Quiet quiet;
      CheckTheory([&] { return OpenModel(Model(), console_); }, AsksForMargins());
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
      if (!ModelSetting::Named(model->Bench(), name).IsChoice()) continue;
      throw UsageError("--vary " + name + ": a choice cannot be searched; \"study\" tries each");
    }
    Limit(&StudyRange::From, ApplyRun(model->Bench(), ends, 0));
    Limit(&StudyRange::To, ApplyRun(model->Bench(), ends, 1));
  }

  // Of what the model does not take nothing is searched.
  void Limit(double StudyRange::*end, const AppliedRun& applied) {
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
  std::unique_ptr<ZelModel> Make(std::vector<std::string>& values) {
    auto model = OpenModel(Model(), console_);
    StudyDesign design;
    for (const StudyRange& range : search_.Ranges) design.Names.push_back(range.Name);
    design.Runs.push_back(values);
    values = ApplyRun(model->Bench(), design, 0).Settings;
    return model;
  }

  Tuning Measure(const std::vector<std::string>& values) {
    const Quiet quiet;
    Tuning tuning{values, {}};
    response_ = {TracePoints, {}, {}};
    try {
      tuning.Readings = ReadRun([&] { return Make(tuning.Values); }, options_.Measure, console_,
                                false, &response_);
    } catch (const CommandError& error) {
      tuning.Readings.Reasons.emplace_back(error.what());
    }
    return tuning;
  }

  bool GoOn(int runs, const Tuning& best) {
    // A better one is the one that was measured last.
    if (best.Values != best_) WriteResponse();
    best_ = best.Values;
    if (options_.Progress) {
      std::vector<std::string> fields{std::to_string(runs),
                                      search_.Goal.Met(best.Readings) ? "1" : "0"};
      Append(fields, Fields(best));
      output_->Write(CsvLine(fields));
    }
    if (Console::CanShowProgress(false)) {
      const bool good = search_.Goal.Met(best.Readings);
      console_.ShowProgress("run " + std::to_string(runs) + " of " +
                            std::to_string(search_.MostRuns) +
                            (good ? ", the goal is met" : ", the goal is not met yet"));
    }
    return !InterruptGuard::Interrupted();
  }

  std::vector<std::string> Captions() const {
    std::vector<std::string> captions;
    if (options_.Progress) captions = {"Runs", "Met"};
    for (const StudyRange& range : search_.Ranges) captions.push_back(range.Name);
    Append(captions, MeasureCaptions(options_.Measure.Measured()));
    captions.emplace_back(ReasonCaption);
    return captions;
  }

  std::vector<std::string> Fields(const Tuning& best) const {
    std::vector<std::string> fields = best.Values;
    Append(fields, MeasureFields(MeasureValues(best.Readings, options_.Measure.Measured())));
    std::vector<std::string> remarks = best.Readings.Reasons;
    Append(remarks, best.Readings.Warnings);
    fields.push_back(Joined(remarks));
    return fields;
  }

  void WriteResponse() const {
    if (options_.Trace.empty() || response_.Times.empty()) return;
    ResultFile file(options_.Trace);
    file.Write(CsvLine({"Time", options_.Measure.Bode.Response.Output}));
    for (std::size_t i = 0; i < response_.Times.size(); ++i) {
      file.Write(CsvLine(
          {FormatShortestSingle(response_.Times[i]), FormatShortestSingle(response_.Values[i])}));
    }
    file.Close();
  }

  std::string WhatIsInTheWay(const Tuning& best) const {
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

  void Save(Tuning best) {
    const Quiet quiet;
    if (!SaveModelFile(*Make(best.Values), options_.Save)) throw FileError("");
  }

  TuneOptions options_;
  Console& console_;
  TuningSearch search_;
  ResultFile* output_ = nullptr;  // while it searches
  StudyTrace response_;           // of the last run
  std::vector<std::string> best_;
};

}  // namespace

void AddTuneCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "tune", "Look for the constants with which a model meets requirements, as a line of CSV");
  const auto options = std::make_shared<TuneOptions>();
  AddModelName(*command, options->Measure.Bode.Response.Model.Model);
  command
      ->add_option(
          "--vary", options->Vary,
          "A constant and between which values it is looked for; with :log evenly on their "
          "logarithm. Repeatable")
      ->type_name("NAME=FROM:TO[:log]")
      ->required();
  command
      ->add_option("--require", options->Require,
                   "What the tuning has to reach, as Overshoot<10 or GainMargin>=6. Repeatable")
      ->type_name("MEASURE<NUMBER");
  command
      ->add_option("--best", options->Best,
                   "The measure that is to be as good as it can be then: as large as it can for "
                   "Bandwidth and margins, else as small")
      ->type_name("MEASURE");
  AddInteger(*command, "--runs", options->MostRuns, "Try so many tunings at most; 200 without it");
  AddMeasureOptions(*command, options->Measure);
  command->add_option("--out", options->Save, "Model file to write, with the tuning that was found")
      ->type_name("FILE.tvf");
  command->add_flag("--progress", options->Progress,
                    "Print a line after each run instead: how many were made, whether the best so "
                    "far meets all, and the best so far");
  command
      ->add_option("--trace", options->Trace,
                   "Write the response of the best so far to this file, whenever there is a better "
                   "one")
      ->type_name("FILE.csv");
  command->callback([options, &console] { TuneRun(*options, console).Run(); });
}

}  // namespace torvane::cli
