#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// What a column of a response's file holds.
enum class ResponseRole { None, Frequency, Gain, Phase, Real, Imaginary, Coherence, Excited };

/// The unit of such a column; Ratio is a magnitude as a plain number.
enum class ResponseUnit {
  Unknown,
  MilliHz,
  Hz,
  KHz,
  MegaHz,
  RadPerSecond,
  Decibel,
  Ratio,
  Degrees,
  Radians
};

/// The unit that a text names, in any letter case ("kHz", "rad/s", "abs", "deg"), but for "mHz",
/// which is another one than "MHz"; Unknown when it names none.
ResponseUnit ResponseUnitOf(std::string_view text);

/// What a unit measures.
ResponseRole RoleOf(ResponseUnit unit);

/// A column by its caption.
struct ResponseColumn {
  ResponseRole Role = ResponseRole::None;
  ResponseUnit Unit = ResponseUnit::Unknown;
  bool Implied = false;  ///< the unit goes without saying
  std::string Name;      ///< what the caption says beyond role and unit: whose response it is
};

/// Reads a caption as benches and calculators write them: "Gain (dB)", "w", "|H| [abs]",
/// "Phase_rad", "Memory 1 Phase". A frequency without a unit is in Hz, or in rad/s when it is
/// called w or omega; a gain that is called just that is in dB.
ResponseColumn ReadResponseCaption(std::string_view caption);

/// What the user says of a file that does not say it.
struct ResponseHints {
  /// The columns of frequency, gain and phase, by their captions or numbers from 1; none when the
  /// captions tell. Where Units has no gain and phase they may be real and imaginary part.
  std::vector<std::string> Columns;
  /// By frequency, gain and phase; Unknown where the file tells.
  std::array<ResponseUnit, 3> Units{};
};

/// Hints from text, three fields each between commas; either may be empty. Nothing when a field is
/// missing, or no unit of its place.
std::optional<ResponseHints> ParseResponseHints(std::string_view columns, std::string_view units);

}  // namespace torvane
