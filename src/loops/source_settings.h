#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "instruments/generator/wave.h"

namespace torvane::loops {

/// A number of a source as a loop's text names it.
struct SourceSetting {
  std::string_view Name;
  double WaveSettings::*Value;
};

const std::vector<SourceSetting>& SourceSettings();

/// The waveforms as a text names them: Torvane.Waveform.Sine and so on.
std::vector<std::string> WaveformNames();
/// Position of the name among them, or -1.
int WaveformNamed(const std::string& name);

}  // namespace torvane::loops
