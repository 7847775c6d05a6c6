#pragma once

#include <string>

#include "core/constant.h"
#include "core/messages.h"

namespace torvane {

// The gains of the sampled controllers are constants of the model that may be missing. A missing
// one is reported when the controller is built and counts as 0 afterwards.

/// The gain; 0 of a missing one.
inline double GainValue(const Constant* gain) {
  return gain ? gain->Value() : 0.0;
}

/// Whether it has changed since this was asked last.
inline bool TakeGainChanged(Constant* gain) {
  return gain && gain->TakeChanged();
}

/// Reports a missing gain in the texts that every controller of one family uses.
inline void RequireGain(const Constant* gain, const char* name, const char* family) {
  if (!gain) Error("Constant " + std::string(name) + " in " + family + " not initialized.");
}

}  // namespace torvane
