#include "core/bench.h"

#include <gtest/gtest.h>

#include <utility>

#include "core/constant.h"
#include "support/fake_instrument.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::FakeInstrument;
using test::Messages;
using test::Recorder;
using Log = std::vector<std::string>;

TEST(BenchTest, NamesAreCheckedAndTheNewcomerIsAddedAllTheSame) {
  Recorder recorder;
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {});
  Variable command(bench, "Command", "");
  Variable again(bench, "Command", "");
  EXPECT_EQ(recorder.Take(), Messages{"Error: Error: Command is already used"});
  Variable hidden(bench, "Command", "", {}, Visibility::Internal);
  EXPECT_EQ(recorder.Take(), Messages{});
  Variable clash(bench, "Time", "", {}, Visibility::Internal);
  EXPECT_EQ(recorder.Take(), Messages{"Error: Error: Time is already used"});
  // An offered signal may not take an internal signal's name.
  Variable hiddenFirst(bench, "history", "", {}, Visibility::Internal);
  Variable offered(bench, "history", "");
  EXPECT_EQ(recorder.Take(), Messages{"Error: Error: history is already used"});
  EXPECT_EQ(bench.Variables().size(), 6u);
  EXPECT_EQ(bench.FindVar("Command"), &command);
  EXPECT_EQ(bench.FindVar("Response"), nullptr);

  Constant gain(bench, "Command", "", 1.0, 0.0, 2.0);  // constants meet only constants
  EXPECT_EQ(recorder.Take(), Messages{});
  Constant gainAgain(bench, "Command", "", 1.0, 0.0, 2.0);
  EXPECT_EQ(recorder.Take(), Messages{"Error: Error: Command is already used"});
  EXPECT_EQ(bench.Constants(), (std::vector<Constant*>{&gain, &gainAgain}));
  EXPECT_EQ(bench.FindConst("Command"), &gain);
  EXPECT_FALSE(recorder.Ended);
}

TEST(BenchTest, TakesOneTimeVariableAndOneSolver) {
  Recorder recorder;
  test::OneStateModel model(0.5, 0.0, [](double, double) { return 0.0; });
  ZelBenchTop& bench = model.Bench();
  TimeVariable other(bench, "t", "sec", {});
  EXPECT_EQ(recorder.Take(), Messages{"Error: Error: TimeVar already initialized"});
  EXPECT_EQ(bench.TimeVar(), &other);
  EXPECT_FALSE(recorder.Ended);
  ZelSolver second(bench, 0.1, model, 1);
  EXPECT_EQ(recorder.Take(),
            Messages{"Fatal Error: Attempt to add solver when one already is present"});
  EXPECT_EQ(bench.Solver(), &model.Solver());
  EXPECT_TRUE(recorder.Ended);
}

TEST(BenchTest, PositionsOutsideTheListsAreReported) {
  Recorder recorder;
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {});
  Variable command(bench, "Command", "");
  Constant gain(bench, "KP", "", 1.0, 0.0, 2.0);
  EXPECT_EQ(bench.VarAt(0), &command);
  EXPECT_EQ(bench.ConstAt(0), &gain);
  EXPECT_EQ(recorder.Take(), Messages{});
  for (const int index : {-1, 1}) {
    EXPECT_EQ(bench.VarAt(index), nullptr);
    EXPECT_EQ(bench.ConstAt(index), nullptr);
    EXPECT_EQ(recorder.Take(), (Messages{"Error: Internal Error ZelVarVector.VarAt failed",
                                         "Error: Internal Error: ZelConstVector.ConstAt Failed"}));
  }
}

/// A bench at 2 s with an instrument of each kind, registered in an order of no meaning.
class BenchInstrumentsTest : public testing::Test {
 protected:
  BenchInstrumentsTest() {
    for (FakeInstrument* instrument : {&meter, &generator, &swept, &fft, &scope}) {
      bench.AddInstrument(*instrument);
    }
    bench.AdvanceTime(2.0);
  }

  Log TakeLog() { return std::exchange(log, Log{}); }

  Log log;
  ZelBenchTop bench;
  FakeInstrument generator{InstrumentKind::WaveGenerator, "generator", log};
  FakeInstrument meter{InstrumentKind::Meter, "meter", log};
  FakeInstrument scope{InstrumentKind::Scope, "scope", log};
  FakeInstrument swept{InstrumentKind::SweptSine, "swept", log};
  FakeInstrument fft{InstrumentKind::FftAnalyser, "fft", log};
};

TEST_F(BenchInstrumentsTest, TheEarliestRequestStopsTheSolver) {
  EXPECT_EQ(ZelBenchTop().NextStopTime(), 1e6);
  EXPECT_EQ(bench.NextStopTime(), 2.0 + 1e6);  // all ask for nothing: -1
  generator.Requested = 2.1;                   // generators are not asked
  scope.Requested = 2e6;
  EXPECT_EQ(bench.NextStopTime(), 2.0 + 1e6);
  meter.Requested = 2.5;
  EXPECT_EQ(bench.NextStopTime(), 2.5);
  scope.Requested = 2.4;
  EXPECT_EQ(bench.NextStopTime(), 2.4);
  swept.Requested = 2.3;
  fft.Requested = 2.2;
  EXPECT_EQ(bench.NextStopTime(), 2.2);
  swept.Requested = 0.0;  // a request in the past is one all the same
  EXPECT_EQ(bench.NextStopTime(), 0.0);
  bench.RemoveInstrument(swept);
  EXPECT_EQ(bench.NextStopTime(), 2.2);
}

TEST_F(BenchInstrumentsTest, EveryInstrumentIsServicedInOrder) {
  EXPECT_TRUE(bench.ServiceInstruments());
  EXPECT_EQ(TakeLog(), (Log{"scope serviced", "fft serviced", "swept serviced", "meter serviced"}));
  scope.StopsAtService = 2;
  EXPECT_FALSE(bench.ServiceInstruments());
  EXPECT_EQ(TakeLog().size(), 4u);  // those after it, too
  meter.StopsAtService = 3;
  EXPECT_FALSE(bench.ServiceInstruments());
  EXPECT_TRUE(bench.ServiceInstruments());
  EXPECT_EQ(meter.ServicedAt, std::vector<double>(4, 2.0));
  EXPECT_TRUE(ZelBenchTop().ServiceInstruments());
}

TEST_F(BenchInstrumentsTest, BroadcastsReachTheirKinds) {
  bench.RefreshInstruments();
  EXPECT_EQ(TakeLog(),
            (Log{"scope refreshed", "fft refreshed", "swept refreshed", "meter refreshed"}));
  bench.StartScopes();
  bench.TellConstantChanged("KP");
  EXPECT_EQ(TakeLog(), (Log{"scope started", "scope told of KP"}));
  bench.PrepareCapture();
  EXPECT_EQ(TakeLog(), (Log{"scope captured", "fft captured", "swept captured", "meter captured",
                            "generator captured"}));
  bench.PrepareWideCapture();
  EXPECT_EQ(TakeLog(), (Log{"scope captured wide", "fft captured wide", "swept captured wide",
                            "meter captured wide", "generator captured wide"}));
}

TEST_F(BenchInstrumentsTest, AsksTheRightKindsForTheirState) {
  for (FakeInstrument* other : {&generator, &meter, &swept, &fft}) other->IsBusy = true;
  EXPECT_FALSE(bench.AnyScopeBusy());
  scope.IsBusy = true;
  EXPECT_TRUE(bench.AnyScopeBusy());

  for (FakeInstrument* other : {&generator, &meter, &scope}) other->IsMeasuring = true;
  EXPECT_FALSE(bench.AnyAnalyserMeasuring());
  for (FakeInstrument* analyser : {&fft, &swept}) {
    analyser->IsMeasuring = true;
    EXPECT_TRUE(bench.AnyAnalyserMeasuring());
    analyser->IsMeasuring = false;
  }

  FakeInstrument secondMeter(InstrumentKind::Meter, "meter 2", log);
  bench.AddInstrument(secondMeter);
  meter.Gain = 3.0;
  secondMeter.Gain = 0.5;
  generator.Gain = scope.Gain = fft.Gain = swept.Gain = 100.0;
  EXPECT_EQ(bench.MeterExcitation(bench.Time()), 3.5 * 2.0);
  EXPECT_EQ(bench.FindInstrument(InstrumentKind::Meter, "meter 2"), &secondMeter);
  EXPECT_EQ(bench.FindInstrument(InstrumentKind::Scope, "meter 2"), nullptr);
}

}  // namespace
}  // namespace torvane
