#include <cmath>
#include <cstring>
#include <random>

#include "core/run_loop.h"
#include "core/text.h"
#include "models/loop.h"

// A model that diverges, what is said of it, and what becomes of it afterwards.

namespace torvane {
namespace {

using test::Messages;

constexpr const char* Question =
    "Error: An overflow occurred, posibly because the state equation solver became unstable.\n"
    "The model will be automatically stopped.  Also, it is recommended that you reset the state "
    "variables.\n\nReset Variables?\n\n(";

class Overflow : public testing::TestWithParam<std::string> {
 protected:
  using Random = std::mt19937;

  static double Between(Random& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  }

  /// All generators to these settings.
  static void Generate(ZelModel& model, Waveform waveform, double amplitude, double hz) {
    for (Instrument* i : model.Bench().Instruments(InstrumentKind::WaveGenerator)) {
      auto& wave = dynamic_cast<ZelWave&>(*i);
      wave.SetWaveform(static_cast<int>(waveform));
      wave.SetAmplitude(amplitude);
      wave.SetOffset(0.0);
      wave.SetFreqHz(hz);
    }
  }

  enum class Steps { Serviced, InOneRun, OneByOne };

  /// What the run says of the overflow that ends it; empty when none does.
  static std::string Run(ZelModel& model, double duration, Steps steps = Steps::Serviced) {
    const double end = model.Time() + duration;
    const bool serviced = steps == Steps::Serviced;
    const double half = 0.5 * model.Solver().Step();
    try {
      while (model.Time() < end && steps == Steps::OneByOne) {
        model.Solver().RunUntil(model.Time() + half);
      }
      while (model.Time() < end && serviced) model.RunChunk();
      model.Solver().RunUntil(end);
    } catch (const SolverOverflow& overflow) {
      return overflow.what();
    }
    return {};
  }

  /// Drives the loop, with any constants, to where it overflows; at last no number is left for the
  /// sources' values.
  static std::string Diverge(ZelModel& model, Random& random, Steps steps) {
    Run(model, Between(random, 0.0, 0.002), steps);
    for (Constant* constant : model.Bench().Constants()) {
      // The sampled filters keep the coefficients of the period that they were set up with.
      if (constant->Name() == "TSample" || random() % 2 == 0) continue;
      constant->Set(Between(random, constant->Lower(), constant->Upper()));
    }
    Generate(model, static_cast<Waveform>(random() % ZelWave::WaveformCount),
             std::pow(10.0, Between(random, 250.0, 308.0)), random() % 4 == 0 ? 1e308 : 20.0);
    const std::string said = Run(model, 0.02, steps);
    if (!said.empty()) return said;
    Generate(model, Waveform::Dc, 0.0, 1.7e308);
    model.Bench().AdvanceTime(2.0);
    return Run(model, 0.001, steps);
  }

  /// Constants with which what the classes remember shows.
  static void Settle(ZelModel& model) {
    model.RestoreDefaults();
    for (const auto& [name, value] :
         {std::pair{"KPI", 1.0}, {"KVF", 50.0}, {"KFA", 50.0}, {"Feedback", 1.0}}) {
      if (Constant* constant = model.Bench().FindConst(name)) constant->Set(value);
    }
    Generate(model, Waveform::Square, 10.0, 100.0);
  }

  /// The message gives the present time and a quantity that is no number now or was about to be
  /// none.
  static void ExpectTrue(const ZelModel& model, const std::string& said) {
    EXPECT_TRUE(said.ends_with(" at time " + FormatShortest(model.Time()) + " s")) << said;
    const std::size_t first = said.find('"') + 1;
    const std::string name = said.substr(first, said.find('"', first) - first);
    bool found = said.find("source \"") != std::string::npos &&
                 model.Bench().FindInstrument(InstrumentKind::WaveGenerator, name);
    for (const Variable* variable : model.Bench().Variables()) {
      const auto* state = dynamic_cast<const StateVariable*>(variable);
      found |= variable->Name() == name && (!(std::abs(variable->Value) < 1e30) ||
                                            (state && !std::isfinite(state->Derivative)));
    }
    EXPECT_TRUE(found) << said;
  }

  /// Every signal at every step.
  static std::vector<double> Trajectory(ZelModel& model) {
    std::vector<double> values;
    for (int step = 0; step < 800; ++step) {
      model.Solver().RunUntil(model.Time() + 0.5 * model.Solver().Step());
      for (const double value : test::Values(model)) values.push_back(value);
    }
    return values;
  }

  test::Recorder messages_;
};

TEST_P(Overflow, SaysWhatWentFirstAndRunsAgainLikeAFreshStart) {
  for (unsigned seed = 0; seed < 4; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const auto model = LoadModel(FindModel(GetParam()));
    // Instruments hold less than a number.
    const std::string said =
        Diverge(*model, random, seed % 2 == 0 ? Steps::Serviced : Steps::InOneRun);
    ASSERT_NE(said, "");
    ExpectTrue(*model, said);

    messages_.Answer = true;
    Settle(*model);
    const double time = model->Time();
    OfferResetAfterOverflow(*model, SolverOverflow(said));
    EXPECT_EQ(messages_.Take(), Messages{Question + said + ")"});
    EXPECT_EQ(model->Time(), time);
    const auto trajectory = Trajectory(*model);

    // The run has left other memory in the class than the divergence: neither is to show.
    const auto fresh = LoadModel(FindModel(GetParam()));
    Settle(*fresh);
    fresh->Bench().AdvanceTime(time);
    fresh->ResetEverything();
    EXPECT_TRUE(trajectory == Trajectory(*fresh));
  }
}

// A run looks for an overflow once in many steps; wherever in them it lies, nothing shows of that.
TEST_P(Overflow, OfManyStepsIsThatOfTheFirstOneThatOverflows) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    SCOPED_TRACE(seed);
    std::string said[2];
    std::vector<double> values[2];
    for (const Steps steps : {Steps::InOneRun, Steps::OneByOne}) {
      const auto model = LoadModel(FindModel(GetParam()));
      model->KeepOwnMemory();
      Random random(seed);
      const int at = steps == Steps::OneByOne;
      said[at] = Diverge(*model, random, steps);
      // What was remembered shows in what follows.
      Generate(*model, Waveform::Square, 10.0, 100.0);
      said[at] += Run(*model, 0.001, steps);
      values[at] = test::Values(*model);
    }
    EXPECT_EQ(said[0], said[1]);
    EXPECT_EQ(std::memcmp(values[0].data(), values[1].data(), values[0].size() * sizeof(double)),
              0);
  }
}

TEST_P(Overflow, KeepsEverythingOnCancel) {
  const auto model = LoadModel(FindModel(GetParam()));
  Random random(1);
  const std::string said = Diverge(*model, random, Steps::Serviced);
  const auto kept = test::Values(*model);
  messages_.Answer = false;
  OfferResetAfterOverflow(*model, SolverOverflow(said));
  const auto now = test::Values(*model);
  EXPECT_EQ(std::memcmp(now.data(), kept.data(), kept.size() * sizeof(double)), 0);
  // Running on may overflow again, but must not hang or crash; a reset by hand makes it run.
  Run(*model, 0.001);
  Settle(*model);
  model->Reset();
  EXPECT_EQ(Run(*model, 0.001, Steps::InOneRun), "");
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Overflow, testing::ValuesIn(ModelNames()));

}  // namespace
}  // namespace torvane
