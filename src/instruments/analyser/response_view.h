#pragma once

namespace torvane {

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

  /// Something is made of the responses.
  bool Derives() const { return OpenLoop || Unwrapped || GroupDelay; }

  bool operator==(const ResponseView&) const = default;
};

}  // namespace torvane
