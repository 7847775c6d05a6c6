#pragma once

#include <string>

namespace torvane {
class ZelBenchTop;
}

namespace torvane::cli {

/// Sets a constant from "NAME=VALUE". The value is a number or, for a list constant, a choice's
/// text or index. A value outside the constant's limits is limited, with a note; anything that
/// cannot be understood is wrong usage.
void ApplySetting(ZelBenchTop& bench, const std::string& assignment);

/// Sets a waveform generator from "KEY=VALUE" (the model's first generator) or
/// "GENERATOR:KEY=VALUE". KEY is Waveform (name or index), Amplitude, FreqHz, Offset, PhaseDeg or
/// DutyCycle.
void ApplyWave(ZelBenchTop& bench, const std::string& assignment);

/// Sets the constant of that name or else, named as in ApplyWave, the generator's setting. A name
/// that is neither is wrong usage.
void ApplyConstantOrWave(ZelBenchTop& bench, const std::string& name, const std::string& value);

}  // namespace torvane::cli
