#include <gtest/gtest.h>

#include "plot/cursor_painter.h"
#include "plot/drawing.h"
#include "plot/scope_painter.h"
#include "support/expected_lines.h"
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
  /// All of it as a window shows it, on pixels or as for a file; "Speed" is chosen.
  void Expect(const char* name, const QSize& size, double ratio, const TraceLook& look,
              QPaintEngine::Type device = QPaintEngine::User) {
    ScopeLabels labels = MakeScopeLabels(Scope, Scope.FindChannel("Speed"));
    labels.Trigger = PlaceOfTrigger(Scope);
    const ScopeColours colours = ScopeColours::Light(look.Colours);
    Painter.Layout(size, ratio, labels, look);
    const auto paint = [&](QPainter& painter) {
      Painter.PaintBackground(painter, colours);
      Painter.PaintTraces(painter, colours, Screen);
      Painter.PaintTags(painter, colours);
      CursorPainter cursors(Scope);
      cursors.Layout(Painter.Plate(), ratio);
      cursors.Read(Screen, Scope.FindChannel("Speed"));
      cursors.Paint(painter, colours);
    };
    test::ExpectLines(std::string("drawings/") + name + ".txt", test::Drawn(paint, device));
  }

  ScopePainter Painter{Scope};
  ScopeScreen Screen;
};

TEST(ScopeDrawingTest, EverythingInAPictureForAFile) {
  Scene scene;
  scene.Scope.Trigger().SetMode(SweepMode::Normal);
  scene.Scope.Trigger().SetLevel(3.0);
  scene.Scope.Trigger().SetPosition(25.0);
  scene.Scope.SetCursorMode(2);
  scene.Scope.SetCursorX(0, 500);
  scene.Scope.SetCursorX(1, 120);
  scene.Expect("scope", {1400, 900}, 1.0, {TraceColours::Apart, true});

  // The same places as in the drawing, and just beside them.
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
  EXPECT_FALSE(scene.Painter.TraceAt({165, 658}, 5.0) || scene.Painter.TraceAt({165, 859}, 999.0));
}

// With few labels and no second row of the legend, as there is no room.
TEST(ScopeDrawingTest, ASmallPictureOfOneSignalAgainstAnother) {
  Scene scene;
  scene.Scope.SetHorizontalChannel(*scene.Scope.FindChannel("Command"));
  scene.Scope.SetCursorMode(1);
  scene.Expect("scope-small", {520, 230}, 1.0, {});
}

// On pixels dashes are cut by hand, and a trace that swings to and fro is drawn as ranges.
TEST(ScopeDrawingTest, ADenseScreenOnFinePixels) {
  Scene scene;
  scene.Scope.ClearKeptTraces();
  for (int i = 0; i < 401; ++i) {
    scene.Speed.Value = i % 2 ? 1.9 : -1.8;
    scene.Command.Value = 0.02 * i;
    scene.Sample(1);
  }
  scene.Scope.CopyScreen(ScopeSweep::Whole, scene.Screen);
  scene.Expect("scope-dense", {1400, 900}, 2.0, {TraceColours::Standard, true},
               QPaintEngine::Raster);
}

}  // namespace
}  // namespace torvane
