#include <gtest/gtest.h>

#include <cmath>

#include "core/bench.h"
#include "instruments/fft/fft_analyser.h"
#include "plot/drawing.h"
#include "plot/picture.h"
#include "plot/response_painter.h"
#include "support/expected_lines.h"

namespace torvane {
namespace {

// Memory 1 holds four points far apart, of which the third is noise and the phase wraps; memory 3 a
// resonance in bins that are closer than the columns, with their coherence.
struct Responses {
  Responses() {
    Xfer.LoadMemory(1,
                    {{2.0, -3.0, 80.0},
                     {20.0, -23.0, -100.0},
                     {50.0, 9.0, 9.0, 1.0, false},
                     {100.0, -40.0, -260.0},
                     {200.0, -60.0, 80.0}},
                    "few.csv");
    ResponseCurve curve;
    for (int bin = 1; bin <= 2000; ++bin) {
      const double hz = 0.1 * bin;
      const double share = hz / 40.0;
      const double real = 1.0 - share * share;
      const double imaginary = 0.2 * share;
      curve.push_back({hz, -10.0 * std::log10(real * real + imaginary * imaginary),
                       -std::atan2(imaginary, real) * 57.3, bin < 1500 ? 1.0 : 0.4, bin % 3 != 0});
    }
    Xfer.LoadMemory(3, std::move(curve), "many.csv");
    Xfer.SetCursors(ZelXfer::CursorMode::Two);
    Xfer.SetCursorSlot(1);
    Xfer.SetCursorPixel(0, 100);
    Xfer.SetCursorPixel(1, 400);
  }
  void Expect(const char* name, const QSize& size, double ratio) {
    ResponsePainter painter(Xfer);
    painter.Layout(size, ratio);
    const ScopeColours colours = ScopeColours::Light();
    test::ExpectLines(std::string("drawings/") + name + ".txt", test::Drawn([&](QPainter& to) {
                        painter.Paint(to, colours);
                        painter.PaintCursors(to, colours);
                        painter.PaintMarks(
                            to, colours,
                            {{ResponseQuantity::Gain, 40.0, 0.0, 14.0, "Peak"},
                             {ResponseQuantity::Phase, 180.0, -180.0, -120.0, "60"}});
                      }));
  }

  ZelBenchTop Bench;
  Variable In{Bench, "In", "volts"};
  Variable Out{Bench, "Out", ""};
  ZelXfer Xfer{Bench, 8};
};

TEST(ResponseDrawingTest, GainPhaseAndCoherenceWithCursorsAndMarks) {
  Responses responses;
  responses.Xfer.SetFreqRange(1.0, 250.0);
  responses.Xfer.SetGainScale(10.0);
  responses.Xfer.SetPhaseOffset(90.0);
  responses.Expect("response", {1400, 1000}, 1.0);
}

TEST(ResponseDrawingTest, BothInOneFinePlotOfTwoDecades) {
  Responses responses;
  responses.Xfer.SetFreqRange(5.0, 300.0);
  responses.Xfer.SetGainOffset(20.0);
  responses.Xfer.SetSplitScreen(false);
  responses.Xfer.SetShown(3, false);
  responses.Expect("response-single", {900, 500}, 2.0);
}

TEST(ResponseDrawingTest, EveryOtherViewOfTheSameResponses) {
  const std::pair<const char*, ResponseView> views[] = {
      {"response-nyquist", {ResponsePlot::Nyquist}},
      {"response-nichols", {ResponsePlot::Nichols, true}},
      {"response-delay", {ResponsePlot::Bode, false, true, true}}};
  Responses responses;
  responses.Xfer.SetFreqRange(1.0, 250.0);
  for (const auto& [name, view] : views) {
    responses.Xfer.SetView(view);
    const Picture picture = ResponsePicture(responses.Xfer, {TraceColours::Apart, true});
    test::ExpectLines(std::string("drawings/") + name + ".txt", test::Drawn([&](QPainter& to) {
                        picture.Paint(to, {1400, 1000}, 1.0);
                      }));
  }
}

}  // namespace
}  // namespace torvane
