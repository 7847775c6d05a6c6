#include <gtest/gtest.h>

#include "core/files/record.h"
#include "plot/drawing.h"
#include "plot/scope/cursor_painter.h"
#include "plot/scope/scope_painter.h"
#include "two_traces.h"

namespace torvane {
namespace {

// "Speed" steps between three levels, "Command" falls until it is below the screen; kept are two
// other levels.
struct Scene : test::TwoTraces {
  Scene() {
    Speed.Value = 1.5;
    Command.Value = 1.0;
    Sample(402);
    Scope.CopyScreen(ScopeSweep::Whole, Screen);
    Scope.KeepTraces(Screen);
    for (int i = 0; i < 301; ++i) {
      Speed.Value = (i / 40 % 3) * 1.2 - 1.0;
      Command.Value = 1.0 - i * 0.05;
      Sample(1);
    }
    Scope.CopyScreen(ScopeSweep::Present, Screen);
  }
  /// Takes a record of a file, or a trace that swings to and fro, which is drawn as ranges.
  void Do(const std::string& word) {
    if (word.find(',') != std::string::npos) {
      Scope.LoadState(ParseRecord("Scope,MainScope," + word, 1));
      Scope.FinishLoading([](int) {});
    }
    if (word != "swing") return;
    Scope.ClearKeptTraces();
    for (int i = 0; i < 401; ++i) {
      Speed.Value = i % 2 ? 1.9 : -1.8;
      Command.Value = 0.02 * i;
      Sample(1);
    }
    Scope.CopyScreen(ScopeSweep::Whole, Screen);
  }
  /// All of it as a window shows it; "Speed" is chosen.
  void Paint(QPainter& to, const test::DrawingRow& row) {
    ScopeLabels labels = MakeScopeLabels(Scope, Scope.FindChannel("Speed"));
    labels.Trigger = PlaceOfTrigger(Scope);
    const ScopeColours colours = row.Colours();
    Painter.Layout({500, 500}, 1.0, labels);  // as it was before
    Painter.Layout(row.Size, row.Ratio, labels, row.Look());
    Painter.PaintBackground(to, colours);
    Painter.PaintTraces(to, colours, Screen);
    Painter.PaintTags(to, colours);
    CursorPainter cursors(Scope);
    cursors.Layout(Painter.Plate(), row.Ratio);
    cursors.Read(Screen, Scope.FindChannel("Speed"));
    cursors.Paint(to, colours);
  }

  ScopePainter Painter{Scope};
  ScopeScreen Screen;
};

// What stands where in the first drawing, and just beside it.
void ExpectPlaces(Scene& scene) {
  using Kind = ScreenMark::Kind;
  const std::size_t speed = scene.Scope.DisplayedChannels()[1];
  const std::pair<QPoint, std::optional<ScreenMark>> marks[] = {
      {{88, 443}, ScreenMark{Kind::Zero, speed}}, {{88, 434}, {}},
      {{80, 240}, ScreenMark{Kind::Level, 0}},    {{103, 240}, ScreenMark{Kind::Level, 0}},
      {{401, 26}, ScreenMark{Kind::Position, 0}}, {{391, 15}, {}},
      {{1350, 400}, ScreenMark{Kind::Tag, speed}}};
  for (const auto& [at, mark] : marks) {
    EXPECT_EQ(scene.Painter.Marks().At(at), mark) << at.x() << ',' << at.y();
  }
  EXPECT_EQ(scene.Painter.LegendAt({600, 885}), speed);
  EXPECT_FALSE(scene.Painter.LegendAt({700, 885}) || scene.Painter.LegendAt({600, 870}));
  EXPECT_EQ(scene.Painter.TraceAt({165, 655}, 5.0), speed);
  EXPECT_EQ(scene.Painter.TraceAt({430, 612}, 5.0), scene.Scope.DisplayedChannels()[0]);
  EXPECT_FALSE(scene.Painter.TraceAt({165, 658}, 5.0) || scene.Painter.TraceAt({165, 859}, 999.0));
}

TEST(ScopeDrawingTest, EachLineOfTheTableIsAsInItsDrawing) {
  test::ExpectDrawings("scope_drawings.txt", [](QPainter& to, const test::DrawingRow& row) {
    Scene scene;
    for (const std::string& word : row.Words) scene.Do(word);
    scene.Paint(to, row);
    if (row.Name == "scope") ExpectPlaces(scene);
  });
}

}  // namespace
}  // namespace torvane
