#include <algorithm>
#include <cmath>
#include <random>

#include "core/constant.h"
#include "instruments/generator/wave.h"
#include "linear/linearize.h"
#include "linear/theory.h"
#include "loops/own_loop.h"
#include "loops/shipped.h"
#include "models/catalogue.h"

// Loops that are written as texts run as the built-in models that they were written after, to the
// bit, with any constants and sources; and the general solver runs them as their own one does.

namespace torvane::loops {
namespace {

struct Pair {
  const char* BuiltIn;
  const char* Twin;
};
void PrintTo(const Pair& pair, std::ostream* stream) {
  *stream << pair.Twin;
}

/// Constants and sources of a model anywhere in their range; of a wide one mostly near the default.
void Vary(ZelBenchTop& bench, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> part(0.0, 1.0);
  for (Constant* const constant : bench.Constants()) {
    const double draw = part(random);
    const double kind = part(random);
    if (constant->IsList()) {
      constant->Set(std::floor(draw * static_cast<double>(constant->Choices().size())));
    } else if (kind < 0.5) {
      constant->Set(constant->Default() * (0.5 + draw));
    } else if (kind < 0.6) {
      constant->Set(constant->Lower() +
                    draw * draw * draw * (constant->Upper() - constant->Lower()));
    }
  }
  for (Instrument* const instrument : bench.Instruments(InstrumentKind::WaveGenerator)) {
    auto& wave = dynamic_cast<ZelWave&>(*instrument);
    wave.SetWaveform(static_cast<int>(part(random) * ZelWave::WaveformCount));
    wave.SetFreqHz(200.0 * part(random));
    wave.SetAmplitude(100.0 * part(random));
    wave.SetOffset(20.0 * (part(random) - 0.5));
  }
}

std::string Until(ZelSolver& solver, double end, bool generally) {
  try {
    if (auto* const own = dynamic_cast<LoopSolver*>(&solver); own && generally) {
      own->RunGenerally(end);
    } else {
      solver.RunUntil(end);
    }
    return "";
  } catch (const SolverOverflow& overflow) {
    return overflow.what();
  }
}

std::vector<double> RowOf(const ZelBenchTop& bench, const ZelBenchTop& named) {
  std::vector<double> row{bench.Time()};
  for (const Variable* const signal : named.Variables()) {
    if (!signal->Internal()) row.push_back(bench.FindVar(signal->Name())->DisplayValue());
  }
  return row;
}

class TwinTest : public testing::TestWithParam<Pair> {};

TEST_P(TwinTest, RunsAsTheBuiltInModelToTheBit) {
  for (unsigned seed = 0; seed <= 200; ++seed) {
    const auto builtIn = LoadModel(FindModel(GetParam().BuiltIn));
    builtIn->DropClassMemory();
    const auto twin = ShippedLoop(GetParam().Twin);
    const auto general = ShippedLoop(GetParam().Twin);
    ASSERT_TRUE(twin && general);
    if (seed > 0) {
      Vary(builtIn->Bench(), seed);
      Vary(twin->Bench(), seed);
      Vary(general->Bench(), seed);
    }
    const double step = builtIn->Solver().Step();
    for (int row = 1; row <= 60; ++row) {
      // Now and then a whole screen, else a few steps.
      const double end = builtIn->Time() + step * (row % 5 == 0 ? 400.3 : row % 7 + 0.5);
      const std::string overflow = Until(builtIn->Solver(), end, false);
      ASSERT_EQ(Until(twin->Solver(), end, false), overflow) << "set-up " << seed;
      ASSERT_EQ(Until(general->Solver(), end, true), overflow) << "set-up " << seed;
      const std::vector<double> expected = RowOf(builtIn->Bench(), builtIn->Bench());
      // From here on the built-in loops drop what they remember of the last sample.
      constexpr double Sane = 1e190;
      if (std::ranges::any_of(expected, [](double x) { return std::abs(x) > Sane; })) break;
      ASSERT_EQ(RowOf(twin->Bench(), builtIn->Bench()), expected) << "set-up " << seed;
      ASSERT_EQ(RowOf(general->Bench(), builtIn->Bench()), expected)
          << "generally, set-up " << seed;
      if (!overflow.empty()) break;
    }
  }
}

// Of what a step carries on a twin may have more, which nothing shows.
TEST_P(TwinTest, HasTheBuiltInModelsPolesAndMargins) {
  const auto builtIn = LoadModel(FindModel(GetParam().BuiltIn));
  const auto twin = ShippedLoop(GetParam().Twin);
  const LinearModel expected = Linearize(*builtIn);
  const LinearModel found = Linearize(*twin);
  EXPECT_EQ(found.Notes, expected.Notes);
  const std::vector<Root> poles = found.Poles();
  const std::vector<Root> wanted = expected.Poles();
  ASSERT_EQ(poles.size(), wanted.size());
  for (std::size_t i = 0; i < poles.size(); ++i) {
    if (std::isinf(wanted[i].Hz)) continue;
    EXPECT_NEAR(std::abs(poles[i].Value - wanted[i].Value), 0.0, 1e-6 * std::abs(wanted[i].Value));
  }
  if (GetParam().Twin == std::string("AnalogFilters")) return;  // no loop
  const Margins margins = TheoryOfLoop(*LoadModel(FindModel(GetParam().BuiltIn))).Read;
  const Margins own = TheoryOfLoop(*ShippedLoop(GetParam().Twin)).Read;
  EXPECT_NEAR(own.SmallestPhaseMargin()->Value, margins.SmallestPhaseMargin()->Value, 1e-6);
  EXPECT_NEAR(own.SmallestGainMargin()->Value, margins.SmallestGainMargin()->Value, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Loops, TwinTest,
                         testing::Values(Pair{"2-1 PI+ Controller", "PIPlus"},
                                         Pair{"3-1 PI Controller", "AnalogPI"},
                                         Pair{"4-1 Digital PI Controller", "DigitalPI"},
                                         Pair{"6-1 PID Controller", "DigitalPID"},
                                         Pair{"9-1 Analog Filters", "AnalogFilters"},
                                         Pair{"15-1 Resonance", "Resonance"},
                                         Pair{"16-1 Cascade Position Loop", "CascadePosition"}),
                         [](const auto& pair) { return pair.param.Twin; });

}  // namespace
}  // namespace torvane::loops
