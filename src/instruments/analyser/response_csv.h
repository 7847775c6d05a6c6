#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "instruments/analyser/response_columns.h"
#include "instruments/analyser/response_curve.h"

namespace torvane {

/// A response of a file; the name is what its captions call it, empty where they do not.
struct NamedResponse {
  std::string Name;
  ResponseCurve Curve;
};

/// The responses read from text, or what is wrong with it.
struct ResponseText {
  std::vector<NamedResponse> Responses;
  std::string Fault;  ///< with the line's number where one has it; empty when all is whole
  /// The fault is that units are not said: hints would tell them.
  bool UnitsMissing = false;
  bool GainUnitMissing = false;
  bool PhaseUnitMissing = false;
  std::string Note;  ///< what was taken for granted; may be empty
};

/// Reads responses from lines of fields that semicolons, tabs, commas or blanks divide.
///
/// A line of captions, and a line of units below it if there is one, name the columns in any order;
/// response_columns.h tells what is understood. Each gain (or real part) and the phase (or
/// imaginary part) that follows it are a response. A second column of complex numbers, as pairs
/// "(-3dB,-45)", "0.5,-0.5" or "0.5-0.5j", is one too. Without captions three columns are frequency
/// in Hz, gain in dB and phase in degrees, which is noted. A magnitude or phase whose unit neither
/// captions nor values tell is a fault.
///
/// Between other separators than commas a decimal comma is read. Blank lines, those that begin with
/// "#", "%" or "!", lines before the captions and the point at 0 Hz are passed over; "Coherence"
/// and "Excited" are taken to the first response. Frequencies rise or fall.
ResponseText ParseResponse(std::string_view text, const ResponseHints& hints = {});

/// The same from a file; the fault names it. Files beyond 16 MiB are refused.
ResponseText ReadResponseFile(const std::string& path, const ResponseHints& hints = {});

/// Points that a response may have.
inline constexpr std::size_t MaxResponsePoints = 100000;

}  // namespace torvane
