#pragma once

#include "instruments/analyser/read_as.h"

namespace torvane {

/// What is drawn against what.
enum class ResponsePlot {
  Bode,     ///< gain and phase against frequency
  Nyquist,  ///< imaginary against real part
  Nichols,  ///< gain against phase
};

/// How an analyser shows its responses.
struct ResponseView {
  ResponsePlot Plot = ResponsePlot::Bode;
  bool OpenLoop = false;    ///< G / (1 - G) of each response G
  bool Unwrapped = false;   ///< phases go on beyond a turn
  bool GroupDelay = false;  ///< below the gain, instead of the phase
  bool Theory = false;      ///< what theory says of the pair lies behind the traces
  /// What margins are read off as; of a response that is opened, those of the open loop.
  ReadAs MarginsAs = ReadAs::Auto;

  /// Something is made of the responses.
  bool Derives() const { return OpenLoop || Unwrapped || GroupDelay; }

  bool operator==(const ResponseView&) const = default;
};

}  // namespace torvane
