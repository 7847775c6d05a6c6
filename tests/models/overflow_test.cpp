#include <gtest/gtest.h>

#include <cmath>

#include "core/run_loop.h"
#include "models/loop.h"

// A model that diverges, and what becomes of it afterwards.

namespace torvane {
namespace {

using test::Messages;

const Messages Question{
    "Error: An overflow occurred, posibly because the state equation solver became unstable.\n"
    "The model will be automatically stopped.  Also, it is recommended that you reset the state "
    "variables.\n\nReset Variables?"};

class Overflow : public testing::TestWithParam<int> {
 protected:
  void SetAmplitude(double amplitude) {
    for (Instrument* i : model_->Bench().Instruments(InstrumentKind::WaveGenerator)) {
      auto& wave = dynamic_cast<ZelWave&>(*i);
      wave.SetWaveform(static_cast<int>(Waveform::Square));
      wave.SetAmplitude(amplitude);
      wave.SetOffset(0.0);
    }
  }

  void SetGains(bool high) {
    for (const char* gain : {"KP", "KVP", "KPD", "KPP", "KI", "G", "Sat"}) {
      Constant* constant = model_->Bench().FindConst(gain);
      if (constant) constant->Set(high ? constant->Upper() : constant->Default());
    }
  }

  /// Runs for some time; whether an overflow ended it.
  bool Overflows(double duration) {
    const double end = model_->Time() + duration;
    try {
      while (model_->Time() < end) RunPass(*model_, 1);
    } catch (const SolverOverflow&) {
      return true;
    }
    return false;
  }

  std::vector<double> States() const {
    std::vector<double> values;
    for (const StateVariable* state : model_->Solver().States()) values.push_back(state->Value);
    return values;
  }

  void ExpectSane() {
    SetGains(false);
    SetAmplitude(10.0);
    // Sampled filters keep their histories: those of 9-2 take four seconds to forget 1e308.
    EXPECT_FALSE(Overflows(model_->Name().starts_with("9-2") ? 4.0 : 0.3));
    bool moves = false;
    for (const Variable* v : model_->Bench().Variables()) {
      EXPECT_TRUE(std::isfinite(v->Value)) << v->Name() << " = " << v->Value;
      EXPECT_LT(std::abs(v->Value), 1e6) << v->Name();
      moves = moves || v->Value != 0.0;
    }
    EXPECT_TRUE(moves);
  }

  test::Recorder messages_;
  std::unique_ptr<ZelModel> model_ = LoadModel(GetParam());
};

TEST_P(Overflow, ModelRunsAgainAfterItsReset) {
  EXPECT_FALSE(Overflows(0.01));
  SetGains(true);
  SetAmplitude(1e308);
  // The models without gains and those whose drive is limited do not all diverge; the two simplest
  // loops must.
  const bool diverged = Overflows(0.3);
  if (GetParam() < 2) {
    ASSERT_TRUE(diverged);
  }
  const std::vector<double> kept = States();
  EXPECT_NE(kept, std::vector<double>(kept.size(), 0.0));

  // Cancel changes nothing. Running on may overflow again, but must not hang or crash.
  messages_.Answer = false;
  OfferResetAfterOverflow(*model_);
  EXPECT_EQ(messages_.Take(), Question);
  for (std::size_t i = 0; i < kept.size(); ++i) {
    const double now = States()[i];
    EXPECT_TRUE(now == kept[i] || (std::isnan(now) && std::isnan(kept[i]))) << i;
  }
  Overflows(0.001);
  SetAmplitude(10.0);
  Overflows(0.001);

  messages_.Answer = true;
  const double time = model_->Time();
  OfferResetAfterOverflow(*model_);
  EXPECT_EQ(messages_.Take(), Question);
  EXPECT_EQ(model_->Time(), time);
  ExpectSane();

  // And at once, without running on.
  SetGains(true);
  SetAmplitude(1e308);
  Overflows(0.3);
  OfferResetAfterOverflow(*model_);
  EXPECT_EQ(messages_.Take(), Question);
  ExpectSane();
  // What the class remembers does not harm the next model.
  SetAmplitude(1e308);
  SetGains(true);
  Overflows(0.3);
  model_ = LoadModel(GetParam());
  ExpectSane();
  EXPECT_EQ(messages_.Take(), Messages{});
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Overflow, testing::Range(0, 15));

}  // namespace
}  // namespace torvane
