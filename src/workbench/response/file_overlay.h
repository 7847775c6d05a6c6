#pragma once

#include <string>

#include "instruments/analyser/analyser.h"

namespace torvane {

/// Lays over what the analyser measures the first response of a file. Which of its columns are
/// frequency, gain and phase, and their units where it does not say them, are told as "F,G,P" and
/// "U,U,U", or empty. A file that cannot be read or understood is a FileError, anything else wrong
/// usage.
void LayFile(FrequencyAnalyser& analyser, const std::string& path, const std::string& columns,
             const std::string& units);

}  // namespace torvane
