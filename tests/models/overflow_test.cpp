#include <gtest/gtest.h>

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
    "variables.\n\nReset Variables?";

class Overflow : public testing::TestWithParam<int> {
 protected:
  using Random = std::mt19937;

  static double Between(Random& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  }

  template <class Use>
  static void ForEachWave(ZelModel& model, Use use) {
    for (Instrument* i : model.Bench().Instruments(InstrumentKind::WaveGenerator)) {
      use(dynamic_cast<ZelWave&>(*i));
    }
  }

  /// Any constants, and a source that overflows by itself or drives the loop to where it does.
  static void Derange(ZelModel& model, Random& random) {
    for (Constant* constant : model.Bench().Constants()) {
      // The sampled filters keep the coefficients of the period that they were set up with.
      if (constant->Name() == "TSample" || random() % 2 == 0) continue;
      constant->Set(Between(random, constant->Lower(), constant->Upper()));
    }
    const bool fast = random() % 4 == 0;
    ForEachWave(model, [&](ZelWave& wave) {
      wave.SetWaveform(static_cast<int>(random() % ZelWave::WaveformCount));
      wave.SetAmplitude(std::pow(10.0, Between(random, 250.0, 308.0)));
      wave.SetOffset(std::pow(10.0, Between(random, 250.0, 308.2)));
      if (fast) wave.SetFreqHz(1e308);
    });
  }

  static void Settle(ZelModel& model) {
    model.RestoreDefaults();
    // Let what the classes remember show.
    for (const auto& [name, value] :
         {std::pair{"KPI", 1.0}, {"KVF", 50.0}, {"KFA", 50.0}, {"Feedback", 1.0}}) {
      if (Constant* constant = model.Bench().FindConst(name)) constant->Set(value);
    }
    ForEachWave(model, [](ZelWave& wave) {
      wave.SetWaveform(static_cast<int>(Waveform::Square));
      wave.SetAmplitude(10.0);
      wave.SetOffset(0.0);
      wave.SetFreqHz(100.0);
    });
  }

  /// What the run says of the overflow that ends it; empty when none does.
  static std::string Run(ZelModel& model, double duration, bool serviced = true) {
    const double end = model.Time() + duration;
    try {
      while (model.Time() < end && serviced) model.RunChunk();
      model.Solver().RunUntil(end);
    } catch (const SolverOverflow& overflow) {
      return overflow.what();
    }
    return {};
  }

  /// Overflows for certain: no number is left for the sources' values.
  static std::string Diverge(ZelModel& model, Random& random) {
    const bool serviced = random() % 2 == 0;  // instruments hold less than a number
    Run(model, Between(random, 0.0, 0.002));
    Derange(model, random);
    std::string said = Run(model, 0.02, serviced);
    if (!said.empty()) return said;
    ForEachWave(model, [](ZelWave& wave) {
      wave.SetWaveform(static_cast<int>(Waveform::Dc));
      wave.SetFreqHz(std::numeric_limits<double>::max());
      wave.SetPhaseDeg(0.0);
    });
    model.Bench().AdvanceTime(2.0);
    said = Run(model, 0.001);
    ForEachWave(model, [](ZelWave& wave) { wave.SetFreqHz(1.0); });
    return said;
  }

  /// The message gives the present time and a quantity that is no number now or was about to be
  /// none.
  static void ExpectTrue(const ZelModel& model, const std::string& said) {
    EXPECT_TRUE(said.ends_with(" at time " + FormatShortest(model.Time()) + " s")) << said;
    const std::size_t first = said.find('"') + 1;
    const std::string name = said.substr(first, said.find('"', first) - first);
    if (said.find("source \"") != std::string::npos) {
      EXPECT_TRUE(model.Bench().FindInstrument(InstrumentKind::WaveGenerator, name)) << said;
      return;
    }
    bool true_ = false;  // several blocks have states of one name
    for (const Variable* variable : model.Bench().Variables()) {
      if (variable->Name() != name) continue;
      const auto* state = dynamic_cast<const StateVariable*>(variable);
      true_ = true_ || !(std::abs(variable->Value) < 1e30) ||
              (state && !std::isfinite(state->Derivative));
    }
    EXPECT_TRUE(true_) << said;
  }

  /// Every signal at every step, as bits.
  static std::vector<std::uint64_t> Trajectory(ZelModel& model) {
    std::vector<std::uint64_t> bits;
    const double end = model.Time() + 0.01;
    while (model.Time() < end) {
      model.Solver().RunUntil(model.Time() + 0.5 * model.Solver().Step());
      for (const Variable* variable : model.Bench().Variables()) {
        EXPECT_TRUE(std::abs(variable->Value) < 1e12) << variable->Name();
        std::memcpy(&bits.emplace_back(), &variable->Value, sizeof(double));
      }
    }
    return bits;
  }

  test::Recorder messages_;
};

TEST_P(Overflow, SaysWhatWentFirstAndRunsAgainLikeAFreshStart) {
  for (unsigned seed = 0; seed < 4; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const auto model = LoadModel(GetParam());
    const std::string said = Diverge(*model, random);
    ASSERT_NE(said, "");
    ExpectTrue(*model, said);

    const double time = model->Time();
    messages_.Answer = true;
    Settle(*model);
    OfferResetAfterOverflow(*model, SolverOverflow(said));
    EXPECT_EQ(messages_.Take(), Messages{std::string(Question) + "\n\n(" + said + ")"});
    EXPECT_EQ(model->Time(), time);
    const auto trajectory = Trajectory(*model);

    // The run has left other memory in the class than the divergence: neither is to show.
    const auto fresh = LoadModel(GetParam());
    Settle(*fresh);
    fresh->Bench().AdvanceTime(time);
    fresh->ResetEverything();
    EXPECT_EQ(trajectory == Trajectory(*fresh), true);
  }
}

TEST_P(Overflow, KeepsEverythingOnCancel) {
  const auto model = LoadModel(GetParam());
  Random random(1);
  const std::string said = Diverge(*model, random);
  const auto values = [&] {
    std::string text;
    for (const Variable* v : model->Bench().Variables()) text += FormatShortest(v->Value) + " ";
    return text;
  };
  const std::string kept = values();
  messages_.Answer = false;
  OfferResetAfterOverflow(*model, SolverOverflow(said));
  EXPECT_EQ(values(), kept);
  // Running on may overflow again, but must not hang or crash; a reset by hand makes it run.
  Run(*model, 0.001);
  Settle(*model);
  model->Reset();
  EXPECT_NO_THROW(Run(*model, 0.001));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Overflow, testing::Range(0, 15));

}  // namespace
}  // namespace torvane
