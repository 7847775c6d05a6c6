#pragma once

#include <optional>
#include <string_view>

namespace torvane {

/// A complex number as a file writes it in one field.
struct ComplexText {
  double First = 0.0;   ///< real part, or gain in dB
  double Second = 0.0;  ///< imaginary part, or phase in degrees
  bool Polar = false;   ///< gain and phase
};

/// Reads "(-3.01dB,-45)", "0.5,-0.5", "(0.5-0.5j)" and "0.5 - 0.5i"; nothing of anything else.
std::optional<ComplexText> ParseComplexText(std::string_view text);

}  // namespace torvane
