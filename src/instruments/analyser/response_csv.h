#pragma once

#include <string>
#include <string_view>

#include "instruments/analyser/response_curve.h"

namespace torvane {

/// A response read from text, or what is wrong with it.
struct ResponseText {
  ResponseCurve Curve;
  std::string Fault;  ///< with the line's number; empty when the curve is whole
};

/// Reads a response from lines of fields that commas, semicolons or tabs divide. A line of captions
/// names the columns: frequency in Hz, gain or magnitude in dB and phase in degrees, in any order
/// and letter case and with or without a unit in brackets; "Coherence" and "Excited" are taken as
/// well, other columns passed over. Without captions the columns are frequency, gain and phase.
/// Blank lines, lines that begin with "#" and the bin at 0 Hz are passed over. Frequencies must
/// rise.
ResponseText ParseResponse(std::string_view text);

/// The same from a file; the fault names it. Files beyond 16 MiB are refused.
ResponseText ReadResponseFile(const std::string& path);

/// Points that a response may have.
inline constexpr std::size_t MaxResponsePoints = 100000;

}  // namespace torvane
