#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "core/constant.h"
#include "core/files/record.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "library/wave.h"
#include "models/catalogue_host.h"
#include "models/loop.h"

// Every setting of every instrument, changed at random: each change can be undone and redone, and
// every state on the way saves and loads without a word to the same bytes.

namespace torvane {
namespace {

using test::Messages;

class SettingsWalk : public testing::Test {
 protected:
  using Setter = std::function<void()>;

  int Pick(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }

  /// From the smallest to the largest, near each other, and what no setting can be.
  double Number() {
    switch (Pick(0, 5)) {
      case 0:
        return std::pow(10.0, Pick(-308, 308));
      case 1:
        return -Pick(0, 100);
      case 2:
        return Pick(0, 1) ? HUGE_VAL : std::nan("");
      default:
        return std::exponential_distribution(1.0)(random_) / Pick(1, 100);
    }
  }
  bool Flip() { return Pick(0, 1) == 1; }
  std::string Signal() {
    const auto& variables = model_->Bench().Variables();
    return variables[static_cast<std::size_t>(Pick(0, static_cast<int>(variables.size()) - 1))]
        ->Name();
  }

  template <class Engine>
  void AddNumbers(Engine& engine, std::initializer_list<void (Engine::*)(double)> setters) {
    for (const auto set : setters)
      setters_.push_back([&engine, set, this] { (engine.*set)(Number()); });
  }
  template <class Engine>
  void AddFlags(Engine& engine, std::initializer_list<void (Engine::*)(bool)> setters) {
    for (const auto set : setters)
      setters_.push_back([&engine, set, this] { (engine.*set)(Flip()); });
  }

  void Add(FrequencyAnalyser& a) {
    using A = FrequencyAnalyser;
    AddNumbers<A>(a, {&A::SetFreqMin, &A::SetFreqMax, &A::SetGainScale, &A::SetGainOffset,
                      &A::SetPhaseScale, &A::SetPhaseOffset});
    AddFlags<A>(a, {&A::SetSplitScreen});
    setters_.insert(
        setters_.end(),
        {[&] { a.SetFreqRange(Number(), Number()); }, [&] { a.SetInput(Signal()); },
         [&] { a.SetOutput(Signal()); }, [&] { a.SelectSetup(Pick(0, 2)); },
         [&] { a.SetFindType(Flip() ? " 3,\r\ndB " : ""); },
         [&] { a.SetCursors(static_cast<A::CursorMode>(Pick(0, 2))); },
         [&] { a.SetCursorPixel(Pick(0, 1), Pick(-10, 100000)); },
         [&] { a.SetCursorSlot(Pick(-1, 5)); }, [&] { a.SetShown(Pick(0, 4), Flip()); }});
  }
  void Add(ZelXfer& x) {
    Add(static_cast<FrequencyAnalyser&>(x));
    using X = ZelXfer;
    AddNumbers<X>(
        x, {&X::SetTSample, &X::SetTStartDelay, &X::SetTEndDelay, &X::SetAmplitude, &X::SetOffset});
    AddFlags<X>(x, {&X::SetSpectrum, &X::ClickSpectrum, &X::SetBinary, &X::SetBypassFilter});
    setters_.insert(setters_.end(),
                    {[&] { x.SetOrder(Pick(2, 15)); }, [&] { x.AutoRange(); },
                     [&] { x.SetTEndDelay(x.RecordTime() * (1.0 - 1e-16)); },
                     [&] {
                       x.Apply({Number(), Pick(2, 15), Number(), Number(), Number(), 1.0});
                     }});
  }
  void Add(ZelSweptDSA& s) {
    Add(static_cast<FrequencyAnalyser&>(s));
    using S = ZelSweptDSA;
    AddNumbers<S>(s, {&S::SetTSample, &S::SetStartFreq, &S::SetEndFreq, &S::SetSettleTime,
                      &S::SetMeasurementTime, &S::SetAmplitude, &S::SetOffset});
    setters_.insert(setters_.end(),
                    {[&] { s.SetStepsPerDecade(Pick(-1, 100)); }, [&] { s.ApplySweepRange(); }});
  }
  void Add(ZelMeter& m) {
    using M = ZelMeter;
    AddNumbers<M>(m, {&M::SetTSample, &M::SetLpf, &M::SetAcHpf, &M::SetHarmonicFreq, &M::SetTWindow,
                      &M::SetExcitationMag, &M::SetExcitationOff, &M::SetExcitationMult});
    AddFlags<M>(m, {&M::SetAcCoupled, &M::SetHarmonicXfer, &M::SetUseDb, &M::SetUseExcitation,
                    &M::SetShowSetup});
    setters_.insert(setters_.end(),
                    {[&] { m.SetVariable(Signal()); }, [&] { m.SetCorrVar(Signal()); },
                     [&] { m.SetHarmonicXferVar(Signal()); },
                     [&] { m.SetKind(static_cast<MeterKind>(Pick(0, 3))); }});
  }

  void Add(ZelScope& s) {
    using T = ZelTrigger;
    T& t = s.Trigger();
    AddNumbers<T>(t,
                  {&T::SetLevel, &T::SetPosition, &T::SetInitialDelayTime, &T::SetDelayAfterTime});
    AddFlags<T>(t, {&T::SetRoll, &T::SetPositiveSlope, &T::SetInitialDelay, &T::SetCountEvents,
                    &T::SetDelayAfter});
    AddFlags<ZelScope>(s, {&ZelScope::SetSingleShot, &ZelScope::SetStopsModel});
    const auto signal = [&]() -> ZelChannel& {
      const int last = static_cast<int>(s.Channels().size()) - 1;
      return *s.Channels()[static_cast<std::size_t>(Pick(0, last))];
    };
    const auto channel = [=, this, &s]() -> ZelChannel& {
      return Pick(0, 5) == 0 ? s.TimeChannel() : signal();
    };
    setters_.insert(
        setters_.end(),
        {[=, this, &t] { t.SetMode(static_cast<SweepMode>(Pick(0, 2))); },
         [=, this, &t] { t.SetNumberOfEvents(Pick(-2, 100)); }, [=, &t] { t.SetSource(signal()); },
         [=, &s] { s.SetHorizontalChannel(channel()); },
         [=, this, &s] { s.SetDisplayed(channel(), Flip()); },
         [=, this, &s] { s.SetVerticalScale(channel(), Number()); },
         [=, this, &s] { s.SetVerticalOffset(channel(), Number()); },
         [=, this, &s] { s.SetHorizontalScale(channel(), Number()); },
         [=, this, &s] { s.SetHorizontalOffset(channel(), Number()); },
         [=, this, &s] {
           s.SetConstForm({Flip(), Pick(-5, 100000), Pick(-5, 100000)});
         }});
  }
  void Add(ZelWave& w) {
    for (const WaveNumber& number : ZelWave::Numbers()) AddNumbers<ZelWave>(w, {number.Set});
    setters_.push_back([&] { w.SetWaveform(Pick(-1, 12)); });
  }
  void Add(Constant& constant) {
    setters_.insert(setters_.end(),
                    {[&] { constant.Set(Number()); }, [&] { constant.ChangeSign(); },
                     [&] { constant.SetToZero(); }});
  }

  /// Everything that can be undone, in words.
  std::string State() const {
    std::string text;
    for (const Constant* constant : model_->Bench().Constants())
      text += constant->FileText() + "\n";
    for (const InstrumentKind kind : AllInstrumentKinds) {
      for (const Instrument* instrument : model_->Bench().Instruments(kind)) {
        RecordWriter writer(text, RecordKeyword(kind), instrument->Name());
        instrument->SaveState(writer);
      }
    }
    return text;
  }

  void ExpectToLoadAgain() {
    const std::string text = ModelFileText(*model_);
    CatalogueHost host;
    reports_.Take();
    ASSERT_TRUE(LoadModelText(text, host));
    EXPECT_EQ(reports_.Take(), Messages{}) << text;
    EXPECT_EQ(ModelFileText(*host.Model), text);
  }

  std::mt19937 random_{1};
  test::Recorder reports_;
  std::unique_ptr<ZelModel> model_;
  std::vector<Setter> setters_;
};

TEST_F(SettingsWalk, EveryStateIsUndoneRedoneAndFiled) {
  for (int walk = 0; walk < 4; ++walk) {
    model_ = LoadModel(6);
    setters_.clear();
    auto& bench = model_->Bench();
    Add(dynamic_cast<ZelXfer&>(*bench.Instruments(InstrumentKind::FftAnalyser).front()));
    Add(dynamic_cast<ZelSweptDSA&>(*bench.Instruments(InstrumentKind::SweptSine).front()));
    Add(*AddMeter(*model_, "M"));
    Add(dynamic_cast<ZelScope&>(*bench.Instruments(InstrumentKind::Scope).front()));
    Add(dynamic_cast<ZelWave&>(*bench.Instruments(InstrumentKind::WaveGenerator).front()));
    for (Constant* constant : bench.Constants()) Add(*constant);
    std::vector<std::string> states{State()};
    while (states.size() <= ZelUndo::Depth) {
      setters_[static_cast<std::size_t>(Pick(0, static_cast<int>(setters_.size()) - 1))]();
      if (State() != states.back()) states.push_back(State());
      ExpectToLoadAgain();
    }
    for (std::size_t i = states.size() - 1; i-- > 0;) {
      ASSERT_TRUE(bench.History().CanUndo());
      bench.History().Undo();
      ASSERT_EQ(State(), states[i]);
    }
    EXPECT_FALSE(bench.History().CanUndo());
    for (std::size_t i = 1; i < states.size(); ++i) {
      bench.History().Redo();
      ASSERT_EQ(State(), states[i]);
    }
    EXPECT_FALSE(bench.History().CanRedo());
    ExpectToLoadAgain();
  }
}

}  // namespace
}  // namespace torvane
