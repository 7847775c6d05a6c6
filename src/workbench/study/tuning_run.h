#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "study/study_pictures.h"
#include "study/tuning.h"
#include "workbench/measure/measurement.h"

namespace torvane {

/// What constants are looked for, between which values, and for what.
struct TuneOptions {
  MeasureOptions Measure;
  std::vector<std::string> Vary;  ///< NAME=FROM:TO[:log]
  std::vector<std::string> Require;
  std::string Best;
  std::optional<int> MostRuns;
};

/// A search for constants with which a model meets requirements. What is asked of the loop comes
/// from theory unless it is to be measured.
class TuningRun {
 public:
  /// Says what is doubtful; wrong usage if the options make no search. `beforeModels` may refuse it
  /// once what needs no model has been checked.
  TuningRun(TuneOptions options, Supervisor& supervisor,
            const std::function<void()>& beforeModels = {});
  TuningRun(const TuningRun&) = delete;
  TuningRun& operator=(const TuningRun&) = delete;

  /// Searches until `goOn` says no, the runs are used up or nothing better can be expected; the
  /// best of all that were tried.
  Tuning Run(const std::function<bool(int runs, const Tuning& best)>& goOn);

  int MostRuns() const { return search_.MostRuns; }
  bool Met(const Tuning& tuning) const { return search_.Goal.Met(tuning.Readings); }
  /// A WorkFault of Kind::Stopped that says what is in the way of the goal.
  void CheckMet(const Tuning& best) const;

  /// Values, measures and remarks of a tuning, as fields of a table.
  std::vector<std::string> Captions() const;
  std::vector<std::string> Fields(const Tuning& best) const;
  /// Of each of those fields; empty where it has none.
  const std::vector<std::string>& Units() const { return units_; }

  /// The response of the last run.
  const StudyTrace& LastResponse() const { return response_; }
  /// The signal that it is of.
  const std::string& ResponseSignal() const { return options_.Measure.Bode.Response.Output; }

  /// Writes the model with the tuning as a model file.
  void Save(Tuning best, const std::string& path) const;

 private:
  std::vector<const RunMeasure*> Asked() const;
  bool AsksForLoop() const;
  bool AsksForMargins() const;
  const ModelOptions& Model() const { return options_.Measure.Bode.Response.Model; }
  void Check();
  void Limit(double StudyRange::*end, const AppliedRun& applied);
  std::unique_ptr<ZelModel> Make(std::vector<std::string>& values) const;
  Tuning Measure(const std::vector<std::string>& values);
  std::string WhatIsInTheWay(const Tuning& best) const;

  TuneOptions options_;
  Supervisor& supervisor_;
  TuningSearch search_;
  StudyTrace response_;
  std::vector<std::string> units_;
};

}  // namespace torvane
