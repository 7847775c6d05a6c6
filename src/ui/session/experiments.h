#pragma once

#include <QList>
#include <QString>

#include "ui/session/data_folder.h"

namespace torvane {

class ZelModel;

/// One of the experiments that a model's description suggests.
struct Experiment {
  QString Title;
  QString Text;  ///< what to do and what to see
  QString File;  ///< the model file that sets it up; empty when it is missing
};

/// The experiments in the last section of the model's description, in their order; none where the
/// description is missing. The file of "Gain, and the notch" of a model "15-1 ..." is
/// examples/15-1-gain-and-the-notch.tvf.
QList<Experiment> ExperimentsOf(const ZelModel& model, const DataFolder& data);

}  // namespace torvane
