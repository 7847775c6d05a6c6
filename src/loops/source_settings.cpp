#include "loops/source_settings.h"

#include "core/names.h"

namespace torvane::loops {

const std::vector<SourceSetting>& SourceSettings() {
  static const std::vector<SourceSetting> all{{"frequency", &WaveSettings::FreqHz},
                                              {"amplitude", &WaveSettings::Amplitude},
                                              {"offset", &WaveSettings::Offset},
                                              {"phase", &WaveSettings::PhaseDeg},
                                              {"dutyCycle", &WaveSettings::DutyCycle}};
  return all;
}

std::vector<std::string> WaveformNames() {
  std::vector<std::string> names;
  for (const char* const name : {"Sine", "Square", "Triangle", "Sawtooth", "Pulse", "BipolarPulse",
                                 "Trapezoid", "SCurve", "DC"}) {
    names.push_back(std::string("Torvane.Waveform.") + name);
  }
  return names;
}

int WaveformNamed(const std::string& name) {
  return IndexOfName(name, WaveformNames());
}

}  // namespace torvane::loops
