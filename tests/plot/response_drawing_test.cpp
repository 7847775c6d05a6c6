#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "core/bench.h"
#include "core/files/record.h"
#include "instruments/fft/fft_analyser.h"
#include "plot/drawing.h"
#include "plot/picture.h"
#include "plot/plane_painter.h"
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
  /// A record of the excitation through a low-pass.
  void Measure() {
    Xfer.Run();
    for (; Xfer.Measuring(); Bench.AdvanceTime(Xfer.TSample())) {
      In.Value = Xfer.Excitation(Bench.Time());
      Out.Value += 0.3 * (In.Value - Out.Value);
      Xfer.Service(Bench.Time());
    }
  }
  /// As a window shows it.
  void Paint(QPainter& to, const ScopeColours& colours, const QSize& size, double ratio,
             const TraceLook& look) {
    if (Xfer.View().Plot != ResponsePlot::Bode) {
      PlanePainter painter(Xfer);
      painter.Layout(size, ratio, look);
      painter.Paint(to, colours);
      return painter.PaintCursors(to, colours, 500);
    }
    ResponsePainter painter(Xfer);
    painter.Layout(size, ratio, look);
    painter.Paint(to, colours);
    painter.PaintCursors(to, colours);
    painter.PaintMarks(to, colours,
                       {{ResponseQuantity::Gain, 40.0, 0.0, 14.0, "Peak"},
                        {ResponseQuantity::Phase, 180.0, -180.0, -120.0, "60"}});
  }

  ZelBenchTop Bench;
  Variable In{Bench, "In", "volts"};
  Variable Out{Bench, "Out", ""};
  ZelXfer Xfer{Bench, 8};
};

// A line of the table each: the drawing's name, size and ratio, then what is done, in order: a
// record of the analyser, a measurement, or another look; a line that ends with "picture" is as in
// a file.
TEST(ResponseDrawingTest, EachLineOfTheTableIsAsInItsDrawing) {
  std::ifstream table(TORVANE_TEST_DATA "/response_drawings.txt");
  for (const std::string& line : test::LinesOf(table)) {
    std::istringstream words(line);
    std::string name, word;
    QSize size;
    double ratio = 1.0;
    words >> name >> size.rwidth() >> size.rheight() >> ratio;
    Responses responses;
    TraceLook look;
    ScopeColours colours = ScopeColours::Light();
    auto device = QPaintEngine::User;
    while (words >> word) {
      if (word == "patterns") look.Patterns = true;
      if (word == "apart") look.Colours = TraceColours::Apart;
      if (word == "dark") colours = ScopeColours::Dark();
      if (word == "pixels") device = QPaintEngine::Raster;
      if (word == "measure") responses.Measure();
      if (word.find(',') == std::string::npos) continue;
      responses.Xfer.LoadState(ParseRecord("Xfer,F," + word, 1));
      responses.Xfer.FinishLoading([](int) {});
    }
    const auto paint = [&](QPainter& to) {
      if (word == "picture") return ResponsePicture(responses.Xfer, look).Paint(to, size, ratio);
      responses.Paint(to, colours, size, ratio, look);
    };
    test::ExpectLines("drawings/" + name + ".txt", test::Drawn(paint, device));
  }
}

}  // namespace
}  // namespace torvane
