#include <gtest/gtest.h>

#include <cmath>
#include <deque>

#include "core/files/record.h"
#include "instruments/fft/fft_analyser.h"
#include "plot/drawing.h"
#include "plot/picture.h"
#include "plot/response/plane_painter.h"
#include "plot/response/response_painter.h"
#include "support/bare_model.h"

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
  /// Takes a record of a file, or measures a low-pass behind a delay.
  void Do(const std::string& word) {
    if (word.find(',') != std::string::npos) {
      Xfer.LoadState(ParseRecord("Xfer,F," + word, 1));
      Xfer.FinishLoading([](int) {});
    }
    if (word == "measure") Xfer.Run();
    std::deque<double> delayed(8);
    for (; Xfer.Measuring(); Bench.AdvanceTime(Xfer.TSample())) {
      In.Value = Xfer.Excitation(Bench.Time());
      Out.Value += 0.3 * (delayed.front() - Out.Value);
      delayed.pop_front();
      delayed.push_back(In.Value);
      Xfer.Service(Bench.Time());
    }
  }
  /// As a window shows it.
  void Paint(QPainter& to, const test::DrawingRow& row) {
    const ScopeColours colours = row.Colours();
    if (Xfer.View().Plot != ResponsePlot::Bode) {
      PlanePainter painter(Xfer);
      painter.Layout(row.Size, row.Ratio, row.Look());
      painter.Paint(to, colours);
      return painter.PaintCursors(to, colours, 500);
    }
    ResponsePainter painter(Xfer);
    painter.Layout({500, 500}, 1.0);  // as it was before
    painter.Layout(row.Size, row.Ratio, row.Look());
    painter.Paint(to, colours);
    painter.PaintCursors(to, colours);
    painter.PaintMarks(to, colours,
                       {{ResponseQuantity::Gain, 40.0, 0.0, 14.0, "Peak"},
                        {ResponseQuantity::Phase, 180.0, -180.0, -120.0, "60"}});
  }

  test::BareModel Model;
  ZelBenchTop& Bench = Model.Bench();
  Variable In{Bench, "In", "volts"};
  Variable Out{Bench, "Out", ""};
  ZelXfer Xfer{Bench, 8};
};

TEST(ResponseDrawingTest, EachLineOfTheTableIsAsInItsDrawing) {
  test::ExpectDrawings("response_drawings.txt", [](QPainter& to, const test::DrawingRow& row) {
    Responses responses;
    for (const std::string& word : row.Words) responses.Do(word);
    if (row.Has("file")) {
      ResponsePicture(responses.Xfer, row.Look()).Paint(to, row.Size, row.Ratio);
    } else {
      responses.Paint(to, row);
    }
  });
}

}  // namespace
}  // namespace torvane
