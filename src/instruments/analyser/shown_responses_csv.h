#pragma once

#include <string>

namespace torvane {

class FrequencyAnalyser;

/// The traces that an analyser shows, as lines of numbers under captions: frequency, gain and phase
/// of the first of them at its bins or points, which can be read back, and what the others are
/// there. What makes them doubtful stands before that, in lines that begin with "#". Only captions
/// when nothing is shown.
std::string ShownResponsesCsv(const FrequencyAnalyser& analyser);

}  // namespace torvane
