#include "core/bench.h"

#include <gtest/gtest.h>

#include <utility>

#include "core/constant.h"
#include "core/messages.h"
#include "support/fake_instrument.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::FakeInstrument;
using test::Messages;
using test::Recorder;
using Log = std::vector<std::string>;

TEST(Bench, NamesAreCheckedAndTheNewcomerIsAddedAllTheSame) {
  Recorder recorder;
  ZelBenchTop bench;
  Variable early(bench, "early", "");
  TimeVariable time(bench, "Time", "sec", {});
  StateVariable state(bench, "state", "", 1.0);
  EXPECT_TRUE(recorder.Ended);
  EXPECT_EQ(recorder.Take(),
            (Messages{"Fatal Error: Error:  TimeVar must be initialized before other vars",
                      "Fatal Error: Solver not initializated when statevar added"}));
  // Internal signals may share a name with others, but not the time's; an offered signal none.
  Variable command(bench, "Command", "");
  Variable hidden(bench, "Command", "", {}, Visibility::Internal);
  Variable again(bench, "Command", "");
  Variable clash(bench, "Time", "", {}, Visibility::Internal);
  EXPECT_EQ(recorder.Take(), (Messages{"Error: Error: Command is already used",
                                       "Error: Error: Time is already used"}));
  EXPECT_EQ(bench.Variables(),
            (std::vector<Variable*>{&early, &state, &command, &hidden, &again, &clash}));
  EXPECT_EQ(bench.FindVar("Command"), &command);

  Constant gain(bench, "Command", "", 1.0, 0.0, 2.0);  // constants meet only constants
  Constant gainAgain(bench, "Command", "", 1.0, 0.0, 2.0);
  TimeVariable other(bench, "t", "sec", {});
  EXPECT_EQ(recorder.Take(), (Messages{"Error: Error: Command is already used",
                                       "Error: Error: TimeVar already initialized"}));
  EXPECT_EQ(bench.FindConst("Command"), &gain);
  EXPECT_EQ(bench.TimeVar(), &other);
  // By position.
  EXPECT_EQ(bench.VarAt(5), &clash);
  EXPECT_EQ(bench.ConstAt(0), &gain);
  for (const int outside : {-1, 6}) {
    EXPECT_EQ(bench.VarAt(outside), nullptr);
    EXPECT_EQ(bench.ConstAt(outside < 0 ? -1 : 2), nullptr);
    EXPECT_EQ(recorder.Take(), (Messages{"Error: Internal Error ZelVarVector.VarAt failed",
                                         "Error: Internal Error: ZelConstVector.ConstAt Failed"}));
  }
}

/// A bench at 2 s with an instrument of each kind, registered in an order of no meaning.
class BenchInstruments : public testing::Test {
 protected:
  BenchInstruments() {
    for (FakeInstrument* instrument : {&meter, &generator, &swept, &fft, &scope}) {
      bench.AddInstrument(*instrument);
    }
    bench.AdvanceTime(2.0);
  }
  /// What the instruments were told since the last call.
  Log TakeLog() { return std::exchange(log, Log{}); }
  static Log OfServiced(const std::string& what) {
    return {"scope " + what, "fft " + what, "swept " + what, "meter " + what};
  }

  Log log;
  ZelBenchTop bench;
  FakeInstrument generator{InstrumentKind::WaveGenerator, "generator", log};
  FakeInstrument meter{InstrumentKind::Meter, "meter", log};
  FakeInstrument scope{InstrumentKind::Scope, "scope", log};
  FakeInstrument swept{InstrumentKind::SweptSine, "swept", log};
  FakeInstrument fft{InstrumentKind::FftAnalyser, "fft", log};
};

TEST_F(BenchInstruments, TheEarliestRequestStopsTheSolver) {
  EXPECT_EQ(ZelBenchTop().NextStopTime(), 1e6);
  const std::pair<FakeInstrument*, double> requests[] = {
      {&generator, 2.1},  // generators are not asked
      {&scope, 2e6},     {&meter, 2.5}, {&scope, 2.4}, {&swept, 2.3}, {&fft, 2.2}, {&swept, 0.0}};
  const double stops[] = {2.0 + 1e6, 2.0 + 1e6, 2.5, 2.4, 2.3, 2.2, 0.0};
  for (std::size_t i = 0; i < std::size(requests); ++i) {
    requests[i].first->Requested = requests[i].second;
    EXPECT_EQ(bench.NextStopTime(), stops[i]) << i;
  }
  bench.RemoveInstrument(swept);
  EXPECT_EQ(bench.NextStopTime(), 2.2);
}

TEST_F(BenchInstruments, EachKindIsToldWhatConcernsItInOrder) {
  EXPECT_TRUE(bench.ServiceInstruments());
  EXPECT_EQ(TakeLog(), OfServiced("serviced"));
  scope.StopsAtService = 2;
  EXPECT_FALSE(bench.ServiceInstruments());
  EXPECT_EQ(TakeLog().size(), 4U);  // those after it, too
  meter.StopsAtService = 3;
  EXPECT_FALSE(bench.ServiceInstruments());
  EXPECT_TRUE(bench.ServiceInstruments());
  EXPECT_EQ(meter.ServicedAt, std::vector<double>(4, 2.0));
  TakeLog();
  bench.RefreshInstruments();
  EXPECT_EQ(TakeLog(), OfServiced("refreshed"));
  bench.StartScopes();
  EXPECT_EQ(TakeLog(), Log{"scope started"});
  bench.RestartInstruments();
  EXPECT_EQ(TakeLog(), OfServiced("restarted"));
  const auto all = [](const std::string& what) {
    Log expected = OfServiced(what);
    expected.push_back("generator " + what);
    return expected;
  };
  bench.PrepareCapture();
  EXPECT_EQ(TakeLog(), all("captured"));
  bench.PrepareWideCapture();
  EXPECT_EQ(TakeLog(), all("captured wide"));

  for (FakeInstrument* other : {&generator, &meter, &swept, &fft}) other->IsBusy = true;
  EXPECT_FALSE(bench.AnyScopeBusy());
  scope.IsBusy = true;
  EXPECT_TRUE(bench.AnyScopeBusy());
  FakeInstrument secondMeter(InstrumentKind::Meter, "meter 2", log);
  bench.AddInstrument(secondMeter);
  meter.Gain = 3.0;
  secondMeter.Gain = 0.5;
  generator.Gain = scope.Gain = fft.Gain = swept.Gain = 100.0;
  EXPECT_EQ(bench.MeterExcitation(3.0), 3.5 * 3.0);
  EXPECT_EQ(bench.FindInstrument(InstrumentKind::Meter, "meter 2"), &secondMeter);
  EXPECT_EQ(bench.FindInstrument(InstrumentKind::Scope, "meter 2"), nullptr);
}

TEST(Messages, ReachTheInnermostSinkUnderTheirCaptions) {
  EXPECT_FALSE(WarningQuestion("nobody listens"));
  FatalError("nobody listens");
  Recorder outer;
  {
    Recorder inner;
    Warning("b");
    EXPECT_FALSE(inner.Ended);
    FatalError("e");
    EXPECT_TRUE(inner.Ended);
    EXPECT_TRUE(WarningQuestion("f"));
    inner.Answer = false;
    EXPECT_FALSE(ErrorQuestion("g"));
    EXPECT_EQ(inner.Take(), (Messages{"Warning: b", "Fatal Error: e", "Warning: f", "Error: g"}));
  }
  Error("outer");
  EXPECT_EQ(outer.Take(), Messages{"Error: outer"});
}

}  // namespace
}  // namespace torvane
