#pragma once

#include <string>
#include <vector>

#include "core/instrument_kind.h"
#include "core/model.h"
#include "instruments/analyser/response_curve.h"

namespace torvane {

class ModelFileHost;

/// What the user has changed of a model since it was built: values of constants, settings and
/// windows of instruments, meters, and what analysers hold in their memories. Another model can be
/// given all of it that it has a place for; what was left alone is there as that model begins.
class ModelChanges {
 public:
  /// `fresh` is another model of the same kind, just built.
  ModelChanges(const ZelModel& model, const ZelModel& fresh);

  /// Gives the changes to the host's model; texts that tell what it has no place for, or takes
  /// otherwise.
  std::vector<std::string> GiveTo(ModelFileHost& host) const;

 private:
  struct Memory {
    InstrumentKind Kind;
    std::string Analyser;
    int Slot;
    std::string Name;
    ResponseCurve Curve;
  };

  std::vector<std::string> lines_;  ///< of a model file
  std::vector<Memory> memories_;
};

}  // namespace torvane
