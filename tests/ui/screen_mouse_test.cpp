#include "ui/panes/scope/screen_mouse.h"

#include <QComboBox>
#include <QWheelEvent>

#include "desktop.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

class ScreenMouseTest : public test::Desktop {
 protected:
  ZelScope& Scope() {
    return static_cast<ZelScope&>(*Bench().Instruments(InstrumentKind::Scope).front());
  }
  // The first two traces.
  std::size_t First() { return Scope().DisplayedChannels().at(0); }
  std::size_t Second() { return Scope().DisplayedChannels().at(1); }
  ZelChannel& Channel(std::size_t index) { return *Scope().Channels()[index]; }
  ScopePaintBox& Screen() { return Find<ScopePaintBox>("PBScreen"); }
  QRect Plate() { return Screen().Painter().Plate(); }
  QString Selected() { return Find<QComboBox>("CmBVertChan").currentText(); }

  // Looks for the mark where one would: along the column left of the screen, or the row above it.
  QPoint Place(ScreenMark mark) {
    for (int step = -10; step < std::max(Plate().width(), Plate().height()); ++step) {
      for (const QPoint& at :
           {Plate().topLeft() + QPoint(-12, step), Plate().topLeft() + QPoint(step, -12),
            Plate().topRight() + QPoint(12, step)}) {
        if (Screen().Painter().Marks().At(at) == mark) return at + QPoint(0, 2);
      }
    }
    ADD_FAILURE() << "no mark";
    return {};
  }
  void Drag(QPoint from, QPoint by) {
    QTest::mousePress(&Screen(), Qt::LeftButton, {}, from);
    for (int part = 1; part <= 4; ++part) QTest::mouseMove(&Screen(), from + by * part / 4);
    QTest::mouseRelease(&Screen(), Qt::LeftButton, {}, from + by);
  }
  void Turn(int eighths, Qt::KeyboardModifiers keys = {}) {
    const QPointF at = Plate().center();
    QWheelEvent event(at, Screen().mapToGlobal(at), {}, QPoint(0, eighths), Qt::NoButton, keys,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Screen(), &event);
  }
  // One more undo brings everything back.
  void ExpectOneUndo() {
    Trigger("MIUndo");
    EXPECT_FALSE(Find<QAction>("MIUndo").isEnabled())
        << Find<QAction>("MIUndo").text().toStdString();
  }
};

TEST_F(ScreenMouseTest, MarksAreDraggedWithOneUndoEach) {
  const int division = Plate().height() / ZelScope::VerticalDivisions;
  const double scale = Channel(Second()).Vertical().Scale;
  Drag(Place({ScreenMark::Kind::Zero, Second()}), {0, -2 * division});
  EXPECT_NEAR(Channel(Second()).Vertical().Offset, 2 * scale, 0.05 * scale);
  ExpectOneUndo();
  EXPECT_EQ(Channel(Second()).Vertical().Offset, 0.0);

  Drag(Place({ScreenMark::Kind::Level, 0}), {3, division});
  EXPECT_NEAR(Scope().Trigger().Level(), -scale, 0.05 * scale);
  ExpectOneUndo();

  Drag(Place({ScreenMark::Kind::Position, 0}), {Plate().width() / 2, 5});
  EXPECT_EQ(Scope().Trigger().Position(), 70.0);
  ExpectOneUndo();
  // A click changes nothing.
  Drag(Place({ScreenMark::Kind::Zero, Second()}), {});
  EXPECT_FALSE(Find<QAction>("MIUndo").isEnabled());
  // A box took the release.
  const QPoint zero = Place({ScreenMark::Kind::Zero, Second()});
  QTest::mousePress(&Screen(), Qt::LeftButton, {}, zero);
  QMouseEvent move(QEvent::MouseMove, zero + QPoint(0, 50), Screen().mapToGlobal(zero),
                   Qt::NoButton, Qt::NoButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&Screen(), &move);
  EXPECT_EQ(Channel(Second()).Vertical().Offset, 0.0);
}

TEST_F(ScreenMouseTest, TheWheelTurnsScalesWithOneUndoATurn) {
  const double scale = Channel(First()).Vertical().Scale;
  const double time = Scope().TimeChannel().Horizontal().Scale;
  Turn(-120);
  Turn(-60);
  Turn(-60);
  EXPECT_EQ(Channel(First()).Vertical().Scale, 5 * scale);  // 10, 20, 50
  ExpectOneUndo();
  EXPECT_EQ(Channel(First()).Vertical().Scale, scale);
  Turn(120, Qt::ControlModifier);
  EXPECT_EQ(Scope().TimeChannel().Horizontal().Scale, time / 2);
}

TEST_F(ScreenMouseTest, AClickChoosesATraceUnlessCursorsTakeIt) {
  const QString first = Selected();
  QTest::mouseClick(&Screen(), Qt::LeftButton, {}, Place({ScreenMark::Kind::Zero, Second()}));
  const QString second = Selected();
  EXPECT_NE(second, first);
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Scope().SweepCount() > 3; }, 30000));
  Click("SBStop");
  // Where the traces are apart.
  const ScopeScreen& shown = Screen().Screen();
  const auto y = [&](std::size_t channel, std::size_t point) {
    return Screen().Pixels().Y(Channel(channel), shown.Values[channel][point]);
  };
  std::size_t point = 0;
  while (std::abs(y(First(), point) - y(Second(), point)) < 40) ++point;
  const int column =
      Screen().Pixels().TimeX(Scope().TimeChannel(), shown.Time[point], shown.Time.front());
  const QPoint onTrace = Plate().topLeft() + QPoint(column, y(First(), point) + 3);
  Scope().SetCursorMode(1);
  QTest::mouseClick(&Screen(), Qt::LeftButton, {}, onTrace);
  EXPECT_EQ(Scope().Cursors().X[0], column);
  EXPECT_EQ(Selected(), second);
  Scope().SetCursorMode(0);
  QTest::mouseClick(&Screen(), Qt::LeftButton, {}, onTrace);
  EXPECT_EQ(Selected(), first);
}

}  // namespace
}  // namespace torvane
