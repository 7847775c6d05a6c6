#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "instruments/scope/scope.h"

namespace torvane {

/// Traces read from text, as they were measured elsewhere, or what is wrong with it.
struct TraceText {
  /// To be kept. A signal that the text lacks has no values, not even one for each time. Time 0 is
  /// the event where the times begin there or before, as a bench's scope counts from its trigger.
  ScopeScreen Screen;
  std::string Note;   ///< what of the text is passed over or to be known of it; empty for nothing
  std::string Fault;  ///< with the line's number; empty when the traces are whole
};

/// Points that a trace may have.
inline constexpr std::size_t MaxTracePoints = 20000;

/// Reads traces from lines of fields that commas, semicolons or tabs divide, as ScreenCsv writes
/// them; decimal commas where it is not commas that divide. The first line names the columns: one
/// of them, else the first, is "Time" or "t", in seconds unless ms or us stand behind it in
/// brackets, and rises; the others are signals of the scope, in any letter case. A unit in brackets
/// behind one may have a prefix (m, u, k, M) before the signal's display unit; another one is
/// noted, and its numbers are read in the display unit. Blank lines and lines that begin with "#"
/// are passed over.
TraceText ParseTraces(std::string_view text, const ZelScope& scope);

/// The same from a file; the fault names it. Files beyond 16 MiB are refused.
TraceText ReadTraceFile(const std::string& path, const ZelScope& scope);

}  // namespace torvane
