#include "cli/assignment.h"
#include "cli/names.h"
#include "cli/settings.h"
#include "core/bench.h"
#include "core/constant.h"
#include "core/text.h"
#include "library/wave.h"

namespace torvane::cli {
namespace {

constexpr const char* WaveformKey = "Waveform";

// The generator that the assignment's name addresses; what addresses it is taken off the name.
ZelWave& AddressedGenerator(const ZelBenchTop& bench, Assignment& assignment) {
  const auto& generators = bench.Instruments(InstrumentKind::WaveGenerator);
  if (generators.empty()) throw UsageError("--wave: the model has no waveform generator");
  Instrument* generator = generators.front();
  const auto colon = assignment.Name.rfind(':');
  if (colon != std::string::npos) {
    const std::string name = assignment.Name.substr(0, colon);
    generator = bench.FindInstrument(InstrumentKind::WaveGenerator, name);
    if (!generator) {
      std::vector<std::string> names;
      names.reserve(generators.size());
      for (const Instrument* other : generators) names.push_back(other->Name());
      throw UnknownName("generator", name, names);
    }
    assignment.Name.erase(0, colon + 1);
  }
  return dynamic_cast<ZelWave&>(*generator);
}

std::vector<std::string> Keys() {
  std::vector<std::string> names{WaveformKey};
  for (const WaveNumber& known : ZelWave::Numbers()) names.emplace_back(known.Name);
  return names;
}

}  // namespace

void ApplyWave(ZelBenchTop& bench, const std::string& text) {
  Assignment assignment = SplitAssignment("--wave", text);
  ZelWave& generator = AddressedGenerator(bench, assignment);
  if (assignment.Name == WaveformKey) {
    const auto& names = ZelWave::WaveformNames();
    generator.SetWaveform(AssignedChoice(assignment, {names.begin(), names.end()}));
    return;
  }
  for (const WaveNumber& key : ZelWave::Numbers()) {
    if (assignment.Name != key.Name) continue;
    const double wanted = AssignedNumber(assignment);
    (generator.*key.Set)(wanted);
    const double stored = generator.Settings().*key.Value;
    if (stored != wanted) NoteLimited(assignment.Name, FormatShortest(stored));
    return;
  }
  throw UnknownName("generator setting", assignment.Name, Keys());
}

void ApplyConstantOrWave(ZelBenchTop& bench, const std::string& name, const std::string& value) {
  const std::string assignment = name + "=" + value;
  std::vector<std::string> names = Keys();
  const bool wave = name.find(':') != std::string::npos || IndexOfName(name, names) >= 0;
  if (bench.FindConst(name)) {
    ApplySetting(bench, assignment);
  } else if (wave) {
    ApplyWave(bench, assignment);
  } else {
    for (const Constant* constant : bench.Constants()) names.push_back(constant->Name());
    throw UnknownName("constant or generator setting", name, names);
  }
}

}  // namespace torvane::cli
