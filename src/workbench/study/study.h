#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "study/design.h"
#include "study/identity.h"
#include "study/requirement.h"
#include "study/row.h"
#include "workbench/measure/measurement.h"

namespace torvane {

/// Which runs of a model a study makes, and what it measures of each.
struct StudyOptions {
  std::vector<std::string> Files;     ///< [STUDY.csv] MODEL
  std::optional<StudyDesign> Design;  ///< the runs, in place of a table and of Vary
  std::vector<std::string> Vary;      ///< NAME=FROM:TO:COUNT[:log]
  std::optional<int> Sample;
  std::optional<int> Seed;
  std::optional<int> Jobs;
  std::string Shard;  ///< K/N
  std::vector<std::string> Require;
  std::string Best;
  MeasureOptions Measure;
  /// The options that decide what comes of a run, as they were given: names and values.
  std::vector<std::pair<std::string, std::string>> Given;
};

/// Refuses a --best that the study does not measure, or that a run cannot be the best of.
void CheckStudyBest(const StudyOptions& options, const MeasureSet& set);

/// What happens while a study is run.
struct StudyCourse {
  std::function<bool(std::size_t run)> Has;  ///< such runs are passed over
  std::function<void(RunResult result)> Take;
  std::function<bool()> GoOn;  ///< asked several times a second
};

/// A study that has been checked and can be run.
class Study {
 public:
  /// Says what is doubtful; wrong usage if the options make no study.
  Study(StudyOptions options, Supervisor& supervisor);

  MeasureSet Measures() const;
  const StudyDesign& Design() const { return design_; }
  const MeasureOptions& Measured() const { return options_.Measure; }
  const StudyIdentity& Identity() const { return identity_; }
  /// The model as it is set up for the measurement.
  ZelModel& First() { return *first_; }
  /// Runs of the share that is to be made.
  std::size_t RunCount() const { return share_.size(); }
  /// The line of captions.
  std::string Head() const;
  /// Head and rows as they will be, but for the measures.
  std::string TableToCome();

  /// Makes the runs in processes of their own and hands their results over in order. `traced`: with
  /// their responses. What ends it before time is a StudyFault.
  void Run(const StudyCourse& course, bool traced);

 private:
  /// Nothing when it was interrupted.
  std::optional<RunResult> Measure(std::size_t run, bool traced) const;

  StudyOptions options_;
  Supervisor& supervisor_;
  StudyDesign design_;
  std::vector<std::size_t> share_;
  int processes_ = 1;
  std::unique_ptr<ZelModel> first_;
  StudyIdentity identity_;
  std::vector<Requirement> requirements_;
};

}  // namespace torvane
