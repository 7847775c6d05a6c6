#pragma once

#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "models/experiment.h"
#include "ui/session/data_folder.h"

namespace torvane {

/// An experiment of a model, and the model file that sets it up.
struct OfferedExperiment {
  Experiment Record;
  QString File;   ///< empty when it is missing
  QString Fault;  ///< why the record cannot be read; empty where it can
};

/// The experiments in the folder of the examples, read when the first is asked for, and those that
/// stand beside an own loop's file.
class OfferedExperiments {
 public:
  explicit OfferedExperiments(const DataFolder& data) : data_(data) {}

  /// Those that name the model, by their numbers. Records that cannot be read come last, whatever
  /// model they are of. `loopFile` is an own loop's.
  std::vector<OfferedExperiment> Of(const std::string& model, const QString& loopFile = {});

 private:
  const DataFolder& data_;
  std::optional<std::vector<OfferedExperiment>> all_;
};

}  // namespace torvane
