#include "ui/panes/scope/screen_mouse.h"

#include "desktop.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

class ScreenMouseTest : public test::Desktop {
 protected:
  ZelScope& Scope() { return First<ZelScope>(InstrumentKind::Scope); }
  // The first two traces.
  std::size_t One() { return Scope().DisplayedChannels().at(0); }
  std::size_t Two() { return Scope().DisplayedChannels().at(1); }
  ZelChannel& Channel(std::size_t index) { return *Scope().Channels()[index]; }
  ScopePaintBox& Screen() { return Find<ScopePaintBox>("PBScreen"); }
  QRect Plate() { return Screen().Painter().Plate(); }

  // Looks for the mark where one would: along the column left of the screen, or the row above it.
  QPoint Place(ScreenMark mark) {
    for (int step = -10; step < std::max(Plate().width(), Plate().height()); ++step) {
      for (const QPoint& at :
           {Plate().topLeft() + QPoint(-12, step), Plate().topLeft() + QPoint(step, -12)}) {
        if (Screen().Painter().Marks().At(at) == mark) return at + QPoint(0, 2);
      }
    }
    ADD_FAILURE() << "no mark";
    return {};
  }
  void Drag(ScreenMark mark, QPoint by) {
    const QPoint from = Place(mark);
    QTest::mousePress(&Screen(), Qt::LeftButton, {}, from);
    for (int part = 1; part <= 4; ++part) QTest::mouseMove(&Screen(), from + by * part / 4);
    QTest::mouseRelease(&Screen(), Qt::LeftButton, {}, from + by);
  }
};

TEST_F(ScreenMouseTest, MarksAreDraggedWithOneUndoEach) {
  const ScreenMark zero{ScreenMark::Kind::Zero, Two()};
  const int division = Plate().height() / ZelScope::VerticalDivisions;
  const double scale = Channel(Two()).Vertical().Scale;
  Drag(zero, {0, -2 * division});
  EXPECT_NEAR(Channel(Two()).Vertical().Offset, 2 * scale, 0.05 * scale);
  Play("click MIUndo -> MIUndo disabled");
  Drag({ScreenMark::Kind::Level, 0}, {3, division});
  EXPECT_NEAR(Scope().Trigger().Level(), -scale, 0.05 * scale);
  Play("click MIUndo -> MIUndo disabled");
  Drag({ScreenMark::Kind::Position, 0}, {Plate().width() / 2, 5});
  Play(R"(-> saved Scope,MainScope,Trigger,Position,70
          click MIUndo -> MIUndo disabled)");
  Drag(zero, {});  // a click changes nothing
  // A box takes the release.
  const QPoint at = Place(zero);
  QTest::mousePress(&Screen(), Qt::LeftButton, {}, at);
  QMouseEvent move(QEvent::MouseMove, at + QPoint(0, 50), Screen().mapToGlobal(at), Qt::NoButton,
                   Qt::NoButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&Screen(), &move);
  Play("-> MIUndo disabled; saved Scope,MainScope,Channel,vF,1,10,0,0,10,0");
}

TEST_F(ScreenMouseTest, AClickChoosesATraceUnlessCursorsTakeIt) {
  QTest::mouseClick(&Screen(), Qt::LeftButton, {}, Place({ScreenMark::Kind::Zero, Two()}));
  Play("run 0.3 -> CmBVertChan=vF (Blue)");
  // Where the traces are apart.
  const ScopeScreen& shown = Screen().Screen();
  const auto y = [&](std::size_t channel, std::size_t point) {
    return Screen().Pixels().Y(Channel(channel), shown.Values[channel][point]);
  };
  std::size_t point = 0;
  while (std::abs(y(One(), point) - y(Two(), point)) < 40) ++point;
  const int column =
      Screen().Pixels().TimeX(Scope().TimeChannel(), shown.Time[point], shown.Time.front());
  const QPoint onTrace = Plate().topLeft() + QPoint(column, y(One(), point) + 3);
  for (const int cursors : {1, 0}) {
    Scope().SetCursorMode(cursors);
    QTest::mouseClick(&Screen(), Qt::LeftButton, {}, onTrace);
    EXPECT_EQ(Scope().Cursors().X[0], column);
    Play(cursors ? "-> CmBVertChan=vF (Blue)" : "-> CmBVertChan=vC (Blk)");
  }
}

}  // namespace
}  // namespace torvane
