#pragma once

#include <string>

namespace torvane {
class ZelBenchTop;
}

namespace torvane {

class WaveFiles;

/// Sets a constant from "NAME=VALUE". The value is a number or, for a list constant, a choice's
/// text or index. A value outside the constant's limits is limited, with a note; anything that
/// cannot be understood is wrong usage.
void ApplySetting(ZelBenchTop& bench, const std::string& assignment);

/// Sets a waveform generator from "KEY=VALUE" (the model's first generator) or
/// "GENERATOR:KEY=VALUE", as ApplySetting. The key File, or a text without "=", plays a file.
void ApplyWave(ZelBenchTop& bench, const std::string& assignment, WaveFiles& files);

/// The file that such an assignment has played, without its column; empty when it plays none.
std::string PlayedFile(const std::string& assignment);

}  // namespace torvane
