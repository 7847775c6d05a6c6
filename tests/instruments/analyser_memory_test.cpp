// What an analyser makes of its records: averages, memories, set-ups, cursors and searches.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/constant.h"
#include "instruments/analyser/auto_find.h"
#include "instruments/analyser/cursor_reading.h"
#include "instruments/analyser/excitation.h"
#include "instruments/analyser/shown_responses_csv.h"
#include "instruments/fft_bench.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {
namespace {

using test::Messages;

class AnalyserMemory : public testing::Test, protected test::FftBench {};

TEST_F(AnalyserMemory, IsKeptUntilTheRecordChangesItsMeasure) {
  EXPECT_FALSE(Xfer.StoreData(1));
  EXPECT_EQ(Reports.Take(), Messages{"Note: There is no measurement to store."});
  TakeRecord(Impulse, One);
  const double before = Xfer.Output()->Gain(0, 0);
  EXPECT_TRUE(Xfer.StoreData(2));
  Xfer.SetShown(2, false);
  EXPECT_TRUE(Xfer.StoreData(2));
  EXPECT_TRUE(Xfer.TraceAt(2).Shown);
  Xfer.SetShown(0, false);
  EXPECT_TRUE(Xfer.StoreData(1));
  EXPECT_TRUE(Xfer.TraceAt(1).Shown) << "of a measurement that is not shown";
  Xfer.SetShown(0, true);
  TakeRecord(Impulse, Zero);
  EXPECT_EQ(Xfer.ResponseGain(0, 0.0), -200.0);
  EXPECT_EQ(Xfer.ResponseGain(2, 0.0), before);
  EXPECT_TRUE(Xfer.ResponseAt(2).At(0)->Excited);
  Xfer.Run();
  Xfer.SetTSample(Period);
  Xfer.SetOrder(4);
  EXPECT_TRUE(Xfer.Measuring() && Xfer.HasData(2) && !Xfer.HasData(0));
  Xfer.SetOrder(3);
  EXPECT_FALSE(Xfer.Measuring() || Xfer.HasData(0) || Xfer.HasData(2));
  EXPECT_EQ(Xfer.NextTime(), -1.0);
  EXPECT_TRUE(Xfer.TraceAt(0).Enabled);
}

TEST_F(AnalyserMemory, TakesAResponseFromElsewhere) {
  Xfer.LoadMemory(2, {{1.0, -3.0, 300.0}, {100.0, -7.0, -400.0, 0.5, false}}, "bench.csv");
  Xfer.LoadMemory(0, {{1.0, -3.0, 0.0}}, "no memory");
  EXPECT_FALSE(Xfer.HasData(0));
  EXPECT_EQ(Xfer.GainRead(2, 10.0), -5.0);
  EXPECT_EQ(Xfer.PhaseRead(2, 1.0), -60.0);
  EXPECT_EQ(Xfer.PhaseRead(2, 100.0), -40.0);
  EXPECT_FALSE(Xfer.GainRead(2, 101.0));
  const Response& loaded = Xfer.ResponseAt(2);
  EXPECT_TRUE(loaded.HasCoherence() && loaded.At(0)->Excited && !loaded.At(1)->Excited);
  EXPECT_EQ(loaded.At(1)->Coherence, 0.5);
  // It has nothing to do with the records' length.
  Xfer.SetOrder(3);
  EXPECT_TRUE(Xfer.HasData(2) && Xfer.TraceAt(2).Shown);
  EXPECT_EQ(Xfer.LoadedFrom(2), "bench.csv");
  TakeRecord(One, One);
  EXPECT_TRUE(Xfer.StoreData(2));
  EXPECT_EQ(Xfer.LoadedFrom(2), "");
}

TEST_F(AnalyserMemory, AveragesRecordsThatGoOnFromEachOther) {
  // The output is twice the input, with a disturbance of the same size on it.
  Xfer.SetAverages(200);
  RandomSequence drawn;
  std::minstd_rand disturbance;
  Xfer.Run();
  Steps(-2, 0, Zero, Zero);
  for (int n = 0; n < 200 * 16; ++n) {
    EXPECT_NEAR(Xfer.Progress(), n / 3200.0, 1e-12);
    const double next = drawn.Uniform(1.0, 0.0);
    Step(next, next + (disturbance() % 2 == 0 ? 0.25 : -0.25));
    EXPECT_EQ(Xfer.Excitation(Model.Bench().Time()), next);
  }
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_EQ(Xfer.Progress(), 1.0);
  ASSERT_TRUE(Xfer.HasCoherence(0));
  for (int bin = 1; bin < 8; ++bin) {
    // Power of the response to that of the disturbance: 1/12 to 1/16. Averages of 200 scatter by a
    // fifteenth.
    EXPECT_NEAR(Xfer.ResponseGain(0, bin), 20.0 * std::log10(2.0), 0.6) << bin;
    EXPECT_NEAR(Xfer.ResponsePhase(0, bin), 0.0, 5.0) << bin;
    EXPECT_NEAR(Xfer.ResponseAt(0).At(bin)->Coherence, 4.0 / 7.0, 0.12) << bin;
    EXPECT_TRUE(Xfer.ResponseAt(0).At(bin)->Excited);
  }
  EXPECT_TRUE(Xfer.StoreData(1));
  EXPECT_EQ(Xfer.ResponseAt(1).At(3)->Coherence, Xfer.ResponseAt(0).At(3)->Coherence);
  // Stopped by hand, the records that are whole make the average.
  Xfer.SetAverages(3);
  Xfer.Run();
  Steps(-2, 20, Impulse, Impulse);
  Xfer.Halt();
  EXPECT_TRUE(Xfer.HasData(0));
  EXPECT_NEAR(Xfer.ResponseGain(0, 3), 20.0 * std::log10(2.0), 1e-5);  // single precision
  // In spectrum mode, powers: of 2 and of 4 the root of 10.
  Xfer.SetSpectrum(true);
  Xfer.SetAverages(2);
  Xfer.Run();
  Steps(-2, 16, Zero, ImpulseAt(8));
  Steps(0, 16, Zero, ImpulseAt(8, 0.5));
  EXPECT_NEAR(Xfer.ResponseGain(0, 3), 10.0 * std::log10(10.0), 1e-5);
}

TEST_F(AnalyserMemory, WarnsOfWhatMakesAMeasurementLessTrustworthy) {
  Xfer.SetAmplitude(0.0);
  TakeRecord(One, One);
  EXPECT_FALSE(Xfer.HasData(0)) << "nothing was excited";
  EXPECT_FALSE(Xfer.HasCoherence(0));
  EXPECT_EQ(Xfer.Warnings().size(), 1U);
  Xfer.SetTEndDelay(Period);
  ZelSweptDSA sweep(Model.Bench(), "Sweep");
  Xfer.Run();
  EXPECT_TRUE(Xfer.Warnings().empty());
  sweep.Run();
  EXPECT_EQ(Xfer.Warnings().size(), 1U);
  EXPECT_EQ(sweep.Warnings().at(0).substr(0, 26), "Two analysers measure at o");
}

TEST_F(AnalyserMemory, OffersSetups) {
  Xfer.AddSetup("Back", "Out", "In");
  Xfer.AddSetup("Back+180", "Out", "In", 180.0);
  Xfer.AddSetup("Back+90", "Out", "In", 90.0);
  EXPECT_EQ(Xfer.CurrentSetup(), -1);
  TakeRecord(One, One);
  // A gain of a half, turned by half a turn; 180 reads as -180.
  for (const auto& [setup, phase] : {std::pair{2, 90.0}, {1, -180.0}, {0, 0.0}}) {
    EXPECT_TRUE(Xfer.SelectSetup(setup));
    EXPECT_EQ(Xfer.CurrentSetup(), setup);
    EXPECT_EQ(Xfer.ResponsePhase(0, 0.0), phase);
  }
  Xfer.AddSetup("No", "In", "Hidden");
  EXPECT_FALSE(Xfer.SelectSetup(3));
  EXPECT_EQ(Reports.Take(),
            (Messages{"Error: Call to Set Xfer Channel with unknown output channel: Hidden",
                      "Error: Call to Enable Xfer Channel Button with Illegal Value"}));
}

/// A memory with a straight fall of 20 dB a decade from 10 to 1000 Hz on a plot of 201 columns, a
/// hundred a decade, with a phase that goes from -60 to -160 degrees.
class ResponseCursors : public AnalyserMemory {
 protected:
  ResponseCursors() {
    Xfer.SetFreqRange(10.0, 1000.0);
    Xfer.LoadMemory(1, {{10.0, 5.0, -60.0}, {1000.0, -35.0, -160.0}}, "line");
    Xfer.SetCursorSlot(1);
  }
  static constexpr int Width = 200;
};

TEST_F(ResponseCursors, ReadWhereTheyStand) {
  EXPECT_TRUE(ReadResponseCursors(Xfer, Width).Points.empty());
  Xfer.SetCursors(ZelXfer::CursorMode::Two);
  Xfer.SetCursorPixel(0, 0);
  Xfer.SetCursorPixel(1, 100);
  const ResponseCursorReading reading = ReadResponseCursors(Xfer, Width);
  ASSERT_EQ(reading.Points.size(), 2U);
  EXPECT_EQ(reading.Points[0].Gain, 5.0);
  EXPECT_NEAR(*reading.Points[1].Phase, -110.0, 1e-9);
  EXPECT_NEAR(reading.Difference->Hz, 90.0, 1e-9);
  EXPECT_NEAR(*reading.Difference->Gain, -20.0, 1e-9);
  EXPECT_NEAR(*reading.Difference->Phase, -50.0, 1e-9);
  EXPECT_NEAR(*reading.Slope, -20.0, 1e-9);
  Xfer.SetShown(1, false);
  EXPECT_FALSE(ReadResponseCursors(Xfer, Width).Points[0].Gain);
  EXPECT_FALSE(ReadResponseCursors(Xfer, Width).Difference->Gain);
  EXPECT_EQ(ShownResponsesCsv(Xfer), "Frequency,Gain,Phase\n");
  Xfer.SetShown(1, true);
  Xfer.LoadMemory(2, {{10.0, 1.0, 2.0}, {11.0, 1.0, 2.0}}, "short");
  EXPECT_EQ(ShownResponsesCsv(Xfer),
            "Frequency,Gain,Phase,Memory 2 Gain,Memory 2 Phase\n"
            "10,5,-60,1,2\n1000,-35,-160,,\n");
  Xfer.LoadMemory(1, {{10.0, 5.0, -60.0, 0.5}}, "line");
  EXPECT_EQ(ShownResponsesCsv(Xfer),
            "Frequency,Gain,Phase,Coherence,Memory 2 Gain,Memory 2 Phase\n10,5,-60,0.5,1,2\n");
}

// A gain of a half and a delay of 10 ms at 500 Hz that grows with frequency; the phase has turned
// twice below the plot.
TEST_F(ResponseCursors, ReadTheViewThatIsShown) {
  ResponseCurve lag;
  for (int hz = 20; hz <= 1000; hz += 20) lag.push_back({1.0 * hz, -6.0206, -0.0036 * hz * hz});
  lag.push_back({2000.0, 0.0, 0.0});  // an open loop without end
  Xfer.LoadMemory(1, lag, "lag");
  Xfer.SetFreqRange(500.0, 1000.0);
  Xfer.SetCursors(ZelXfer::CursorMode::Two);
  Xfer.SetCursorPixel(0, 0);
  Xfer.SetCursorPixel(1, Width);
  Xfer.SetView({ResponsePlot::Bode, false, true, true});
  const ResponseCursorReading reading = ReadResponseCursors(Xfer, Width);
  EXPECT_NEAR(*reading.Points[0].Phase, -900.0, 1e-9);
  EXPECT_NEAR(*reading.Difference->Phase, -2700.0, 1e-9);
  EXPECT_NEAR(*reading.Points[0].Delay, 0.01, 1e-9);
  EXPECT_NEAR(*Xfer.DelayRead(1, 510.0), 0.010202, 1e-6);
  Xfer.SetView({ResponsePlot::Bode, true});
  // Half of a closed loop is all of an open one, and with half a turn a third.
  EXPECT_NEAR(*Xfer.GainRead(1, 1000.0), 0.0, 1e-3);
  EXPECT_NEAR(*Xfer.GainRead(1, 500.0), -9.5424, 1e-3);
  EXPECT_EQ(Xfer.GainRead(1, 2000.0), -200.0);
  EXPECT_EQ(Xfer.PhaseRead(1, 2000.0), 0.0);
  EXPECT_FALSE(Xfer.DelayRead(1, 510.0));
}

TEST_F(ResponseCursors, AreMovedToWhatIsSearched) {
  // The first cursor stands at `Then` afterwards.
  const struct {
    const char* What;
    int Cursors, First, Second, Then;
    const char* Note;
  } cases[] = {
      {"-2.9 dB", 1, 0, 0, 40, ""},
      {"-3.1DB", 1, 50, 0, 41, ""},
      {"-3,1 dB", 1, 50, 0, 41, ""},
      {"-3,1.5 dB", 1, 3, 0, 3, "Cannot read Autofind selection"},
      {"-109.9 deg", 1, 0, 0, 100, ""},
      {"-109.9 deg", 2, 90, 120, 100, ""},
      {"gain MAX", 1, 50, 0, 0, ""},
      {"Gain Min", 1, 0, 0, 196, ""},
      {"-3 dB", 0, 3, 0, 3, ""},
      {"-100 dB", 1, 7, 0, 7, "Could not find -100 dB on screen"},
      {"-3 dB", 2, 100, 50, 100, "Could not find -3 dB between cursors"},
      {"Gain Max", 2, 70, 50, 70, "Gain Maximum at Cursor2"},
      {"Gain Min", 2, 70, 50, 70, "Gain Minimum at Cursor1"},
      {"Phase", 1, 3, 0, 3, "Cannot read Autofind selection"},
      {"any dB", 1, 3, 0, 3, "Cannot read Autofind selection"},
      {"-3 dB", 2, 50, 50, 50,
       "Cursors are in same position.\nMove one cursor or configure screen for one cursor."}};
  for (const auto& [what, cursors, first, second, then, note] : cases) {
    Xfer.SetFindType(what);
    Xfer.SetCursors(static_cast<ZelXfer::CursorMode>(cursors));
    Xfer.SetCursorPixel(0, first);
    Xfer.SetCursorPixel(1, second);
    EXPECT_EQ(AutoFind(Xfer, Width).value_or(first), then) << what << " from " << first;
    EXPECT_EQ(Reports.Take(), *note ? Messages{std::string("Note: ").append(note)} : Messages{})
        << what;
  }
  // From -120 degrees through the half turn to -285, which is beyond the wrap.
  Xfer.LoadMemory(1, {{10.0, 0.0, -120.0}, {30.0, 0.0, 75.0}, {1000.0, 0.0, 60.0}}, "wrapped");
  Xfer.SetCursors(ZelXfer::CursorMode::One);
  Xfer.SetCursorPixel(0, 0);
  Xfer.SetFindType("-180 deg");
  EXPECT_EQ(AutoFind(Xfer, Width), 48);
  Xfer.SetShown(1, false);
  EXPECT_FALSE(AutoFind(Xfer, Width));
  EXPECT_EQ(Reports.Take(), Messages{"Note: Cursor waveform is not showing"});
}

TEST_F(AnalyserMemory, SaysWhenAndWithWhichConstantsItWasTaken) {
  Constant gain(Model.Bench(), "KP", "", 1.0, 0.0, 10.0);
  Constant other(Model.Bench(), "KI", "", 7.0, 0.0, 10.0);
  TraceOrigin one = OriginNow(Model.Bench());
  gain.Set(2.0);
  const TraceOrigin two = OriginNow(Model.Bench());
  EXPECT_EQ(OriginText(one, {&one, &two}), "KP = 1");
  EXPECT_EQ(OriginText(two, {&two}), "");
  for (const auto& [time, text] : {std::pair{70e-6, "at 70 us, KP = 1"},
                                   {0.0025, "at 2.5 ms, KP = 1"},
                                   {1.25, "at 1.25 s, KP = 1"}}) {
    one.Time = time;
    EXPECT_EQ(OriginText(one, {&one, &two}), text);
  }
}

}  // namespace
}  // namespace torvane
