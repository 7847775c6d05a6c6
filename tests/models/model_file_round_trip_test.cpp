#include <gtest/gtest.h>

#include <random>

#include "core/constant.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "library/wave.h"
#include "models/catalogue.h"
#include "models/catalogue_host.h"
#include "support/model_limits.h"
#include "support/recorder.h"

// Every record of every model: saved, loaded into a fresh model and saved again.

namespace torvane {
namespace {

using test::Messages;

/// Moves every setting that a file holds away from its default.
class Shuffler {
 public:
  explicit Shuffler(ZelModel& model) : model_(model) {}

  void Shuffle() {
    for (Constant* c : Bench().Constants()) {
      c->Set(c->IsList() ? Pick(static_cast<int>(c->Choices().size()))
                         : c->Lower() + Fraction() * (c->Upper() - c->Lower()));
    }
    AddMeter(model_, "Meter A");
    AddMeter(model_, "Meter B");
    Each<ZelScope>(InstrumentKind::Scope);
    Each<ZelXfer>(InstrumentKind::FftAnalyser);
    Each<ZelSweptDSA>(InstrumentKind::SweptSine);
    Each<ZelMeter>(InstrumentKind::Meter);
    Each<ZelWave>(InstrumentKind::WaveGenerator);
  }

 private:
  ZelBenchTop& Bench() { return model_.Bench(); }
  double Fraction() { return std::uniform_real_distribution<double>(0.01, 1.0)(random_); }
  int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }
  bool Flip() { return Pick(2) == 1; }

  template <class Kind>
  void Each(InstrumentKind kind) {
    for (Instrument* instrument : Bench().Instruments(kind)) {
      instrument->Placement = {static_cast<WindowState>(Pick(3)), Pick(900), Pick(900) - 100,
                               Pick(900) - 100, Pick(900)};
      Change(dynamic_cast<Kind&>(*instrument));
    }
  }

  void Change(ZelScope& scope) {
    ChangeChannel(scope, scope.TimeChannel());
    for (const auto& channel : scope.Channels()) ChangeChannel(scope, *channel);
    scope.SetHorizontalChannel(*scope.Channels()[static_cast<std::size_t>(Pick(2))]);
    scope.SetConstForm({Flip(), Pick(500), Pick(500)});
    scope.SetStopsModel(true);
    ZelTrigger& trigger = scope.Trigger();
    trigger.SetSource(*scope.Channels()[1]);
    trigger.SetPositiveSlope(false);
    trigger.SetLevel(Fraction());
    trigger.SetPosition(100.0 * Fraction());
    trigger.SetMode(static_cast<SweepMode>(Pick(3)));
    trigger.SetRoll(true);
    trigger.SetInitialDelay(true);
    trigger.SetInitialDelayTime(Fraction());
    trigger.SetCountEvents(true);
    trigger.SetNumberOfEvents(2 + Pick(9));
    trigger.SetDelayAfter(true);
    trigger.SetDelayAfterTime(Fraction());
  }

  void ChangeChannel(ZelScope& scope, ZelChannel& channel) {
    scope.SetDisplayed(channel, Flip());
    scope.SetVerticalScale(channel, -Fraction());
    scope.SetVerticalOffset(channel, Fraction());
    scope.SetHorizontalScale(channel, Fraction());
    scope.SetHorizontalOffset(channel, -Fraction());
  }

  void ChangePlot(FrequencyAnalyser& analyser) {
    analyser.SetOutput(analyser.Channels()[0]->Name());
    analyser.SetInput(analyser.Channels()[1]->Name());
    // Far from the default: neither limit can be set before the other.
    analyser.SetFreqRange(1e5 + 1e5 * Fraction(), 1e6 + 1e6 * Fraction());
    analyser.SetGainScale(40.0 * Fraction());
    analyser.SetGainOffset(-Fraction());
    analyser.SetPhaseScale(Fraction());
    analyser.SetPhaseOffset(Fraction());
    analyser.SetFindType("-90 deg");
  }

  void Change(ZelXfer& xfer) {
    // The longest record there is, nearly all of it without excitation.
    xfer.SetOrder(xfer.MaxOrder() - 1);
    xfer.SetTSample(1.0 + Fraction());
    xfer.SetTEndDelay((1.0 - 0.01 * Fraction()) * xfer.Length() * xfer.TSample());
    xfer.SetTStartDelay(Fraction());
    xfer.SetAmplitude(Fraction());
    xfer.SetOffset(Fraction());
    xfer.SetSpectrum(true);
    ChangePlot(xfer);
  }

  void Change(ZelSweptDSA& swept) {
    swept.SetTSample(Fraction());
    swept.SetStartFreq(Fraction());
    swept.SetEndFreq(Fraction());
    swept.SetMeasurementTime(Fraction());
    swept.SetSettleTime(Fraction());
    swept.SetStepsPerDecade(2 + Pick(100));
    swept.SetAmplitude(Fraction());
    swept.SetOffset(Fraction());
    ChangePlot(swept);
  }

  void Change(ZelMeter& meter) {
    const std::string& second = model_.Bench().Variables()[1]->Name();
    meter.SetVariable(second);
    meter.SetCorrVar(second);
    meter.SetHarmonicXferVar(second);
    meter.SetKind(static_cast<MeterKind>(Pick(4)));
    meter.SetAcCoupled(Flip());
    meter.SetHarmonicXfer(true);
    meter.SetUseDb(true);
    meter.SetAcHpf(Fraction());
    meter.SetLpf(Fraction());
    meter.SetHarmonicFreq(Fraction());
    meter.SetTSample(Fraction());
    meter.SetTWindow(Fraction());
    meter.SetUseExcitation(true);
    meter.SetShowSetup(true);
    meter.SetExcitationMag(Fraction());
    meter.SetExcitationOff(Fraction());
    meter.SetExcitationMult(Fraction());
  }

  void Change(ZelWave& wave) {
    wave.SetWaveform(1 + Pick(8));
    wave.SetAmplitude(-Fraction());
    wave.SetFreqHz(Fraction());
    wave.SetOffset(Fraction());
    wave.SetPhaseDeg(Fraction());
    wave.SetDutyCycle(Fraction());
  }

  ZelModel& model_;
  std::mt19937 random_{20};
};

class ModelFileRoundTrip : public ::testing::TestWithParam<int> {};

TEST_P(ModelFileRoundTrip, GivesEveryRecordAgain) {
  test::Recorder messages;
  const auto model = LoadModel(GetParam());
  const std::string defaults = ModelFileText(*model);
  Shuffler(*model).Shuffle();
  const std::string saved = ModelFileText(*model);
  EXPECT_EQ(messages.Take(), Messages{});
  EXPECT_NE(saved, defaults);

  CatalogueHost host;
  EXPECT_TRUE(LoadModelText(saved, host));
  EXPECT_EQ(messages.Take(), Messages{});
  ASSERT_TRUE(host.Model);
  EXPECT_EQ(ModelFileText(*host.Model), saved);
  for (std::size_t i = 0; i < model->Bench().Constants().size(); ++i) {
    EXPECT_EQ(host.Model->Bench().Constants()[i]->Value(), model->Bench().Constants()[i]->Value());
  }
  EXPECT_EQ(test::LimitCheck::Run(*host.Model), "");

  // Back to the defaults, but for the two meters, which no record takes away.
  EXPECT_TRUE(LoadModelText(defaults, host));
  EXPECT_EQ(messages.Take(), Messages{});
  const std::string back = ModelFileText(*host.Model);
  EXPECT_EQ(back.substr(0, back.find("Meter,")), defaults.substr(0, defaults.find("WaveGen,")));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, ModelFileRoundTrip, ::testing::Range(0, 15));

}  // namespace
}  // namespace torvane
