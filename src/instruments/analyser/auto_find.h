#pragma once

#include <optional>
#include <string>

namespace torvane {

class FrequencyAnalyser;

/// What an automatic search looks for.
struct FindTarget {
  /// A level that the trace crosses, or an extreme.
  enum class Kind { GainLevel, PhaseLevel, GainMax, GainMin };
  Kind What = Kind::GainLevel;
  double Level = 0.0;  ///< dB or degrees
};

/// "-3 dB" and "-90 deg" are levels, "Gain Max" and "Gain Min" extremes, in capitals or not;
/// nothing when the text is none of these.
std::optional<FindTarget> ParseFindTarget(const std::string& text);

/// Searches the trace that the cursors read for what the analyser's selection says. The result is
/// the column to which cursor 1 belongs; what cannot be found is noted. A column of the plot,
/// `plotWidth` pixels wide, is one step of the search. With one cursor it goes on from there and
/// then over the whole plot, with two it stays between them; without cursors nothing is searched.
///
/// The level lies between the first value of a search and the one found, however many columns are
/// between them: a trace that starts beyond the level is found where it comes back. Phases
/// that are not shown unwrapped are the same a turn away, and go on through a wrap.
std::optional<int> AutoFind(const FrequencyAnalyser& analyser, int plotWidth);

}  // namespace torvane
