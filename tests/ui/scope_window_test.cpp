#include "ui/panes/scope/scope_window.h"

#include <QAbstractItemView>
#include <QDockWidget>
#include <QHeaderView>
#include <QLabel>
#include <QMdiArea>
#include <QScrollBar>
#include <QSplitter>
#include <QTableWidget>
#include <QTemporaryFile>

#include "core/files/model_file.h"
#include "core/text.h"
#include "desktop.h"
#include "instruments/scope/scope_cursors.h"
#include "ui/desk/theme.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

class ScopeWindowTest : public test::Desktop {
 protected:
  ~ScopeWindowTest() override { ApplyTheme(Theme::System); }
  ZelScope& Scope() { return First<ZelScope>(InstrumentKind::Scope); }
  ScopePaintBox& Screen() { return Find<ScopePaintBox>("PBScreen"); }
  QImage Picture() { return Screen().grab().toImage(); }
  int Height() {
    QCoreApplication::processEvents();
    return Screen().height();
  }
};

TEST_F(ScopeWindowTest, TheScreenGetsTheRoomOfWhatIsHidden) {
  const int before = Height();
  Click("SBHide");
  EXPECT_GT(Height(), before);
  Click("PageScales");
  EXPECT_EQ(Height(), before);
  const int plate = Screen().Pixels().Height();
  Play("click PageMeasure; click SBScaleDisplay ->");
  EXPECT_GT(Screen().Pixels().Height(), plate);
}

TEST_F(ScopeWindowTest, ADoubleClickInTheOpenListOfTracesHidesOne) {
  auto& list = Find<QComboBox>("CmBVertChan");
  list.showPopup();  // by the first click; the second goes to the list
  QTest::mouseDClick(list.view()->viewport(), Qt::LeftButton);
  Play("-> CBVertShow off");
  EXPECT_FALSE(list.view()->isVisible());
}

TEST_F(ScopeWindowTest, CursorsAreDraggedReadAndUndone) {
  // A whole sweep stays on the screen.
  Play(R"(click PageTrigger; click CBSingleShot; click SBRun -> SBStop on
          click PageMeasure; click TZelScopeF/SBTwoCursors -> SGCursors.rowCount=2)");
  const auto drag = [&](int from, int to) {
    QTest::mousePress(&Screen(), Qt::LeftButton, {}, {from, 50});
    for (const int x : {(from + to) / 2, to}) QTest::mouseMove(&Screen(), {x, 50});
    QTest::mouseRelease(&Screen(), Qt::LeftButton, {}, {to, 50});
  };
  drag(220, 300);  // the second cursor, which stands further right
  drag(110, 500);  // the first
  drag(280, 400);
  EXPECT_EQ(Scope().Cursors().X[0] - Scope().Cursors().X[1], 100);
  const CursorReading two = ReadCursors(Scope(), Screen().Screen(), Screen().Pixels()).value();
  EXPECT_NEAR(two.Time, 100.0 / Screen().Pixels().Width() * 0.02, 0.0001);
  Play("-> SGCursors[1,1]=" + FormatEdit(two.Values[1]));
  Play("click SBUndo; click SBUndo; click SBUndo; click SBUndo -> SGCursors hidden");
  EXPECT_EQ(Scope().Cursors().X, ScopeCursors().X);
  // Nothing of this sweep stands on the screen yet.
  Play(R"(click MIUndo; click TZelScopeF/SBOneCursor; type EHorizScale 1e9 ->
          click PageTrigger; click RBTrigCont; run 0.01 -> SGCursors[1,1]=Unavailable)");
}

TEST_F(ScopeWindowTest, TheConstantsPanelIsRecordedAndRestored) {
  const auto& constants = Find<QWidget>("SGConsts");
  const int before = constants.width();
  QWidget& handle = *Find<QSplitter>("Splitter1").handle(1);
  const QPoint grip = handle.rect().center();
  QTest::mousePress(&handle, Qt::LeftButton, {}, grip);
  for (const int x : {-20, -60}) QTest::mouseMove(&handle, grip + QPoint(x, 0));
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, grip);
  QCoreApplication::processEvents();
  EXPECT_NE(constants.width(), before);
  EXPECT_EQ(Scope().ConstForm().Width, constants.width());
  Click("SBUndo");
  EXPECT_EQ(constants.width(), before);
  Scope().SetConstForm({true, 300, 120});
  EXPECT_EQ(constants.width(), 300);
  EXPECT_EQ(Find<QTableWidget>("SGConsts").columnWidth(0), 120);
  Scope().SetConstForm({false, 300, 120});
  EXPECT_EQ(Find<QSplitter>("Splitter1").sizes().value(1), 0);
  // In a narrow window they stand below the screen, with as much height as it leaves or they are
  // given; their width is for a wide one.
  Scope().SetConstForm({true, 300, 120});
  QWidget& frame = *Find<QWidget>("TZelScopeF").parentWidget();
  frame.resize(460, 600);
  QCoreApplication::processEvents();
  EXPECT_GT(constants.width(), 400);
  const int high = constants.height();
  frame.resize(460, 460);
  QCoreApplication::processEvents();
  EXPECT_LT(constants.height(), high);
  EXPECT_GE(Find<ScopePaintBox>("PBScreen").Pixels().Height(), 180);
  QTest::mousePress(&handle, Qt::LeftButton, {}, grip);
  for (const int y : {10, 20}) QTest::mouseMove(&handle, grip + QPoint(0, y));
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, grip);
  EXPECT_EQ(Scope().ConstForm().Width, 300);
  frame.resize(900, 600);
  QCoreApplication::processEvents();
  EXPECT_EQ(constants.width(), 300);
}

TEST_F(ScopeWindowTest, KeptTracesOutliveFilesButNotTheModel) {
  QTemporaryFile saved;
  ASSERT_TRUE(saved.open());
  saved.write(QByteArray::fromStdString(ModelFileText(*Panel->Model())));
  saved.close();
  Play(
      "run 0.05; click PageMeasure; click SBMath; click BKeep -> BClearKept enabled; "
      "SGMath.rowCount=18");
  EXPECT_TRUE(Panel->Work().Open(saved.fileName()));
  Play("-> BClearKept enabled");
  Play("click BClearKept -> SGMath.rowCount=9");
  Play("run 0.05; click BKeep; model 3-1 PI Controller -> BClearKept disabled");
}

// Some displays frame a window by themselves; on others a panel that is one draws its own edges, as
// it does with a title of its own.
TEST_F(ScopeWindowTest, MathTakenOutShowsAllItsRowsAndColumns) {
  Play("run 0.05; click PageMeasure; click SBMath; click BKeep -> SGMath.rowCount=18");
  auto& math = Find<QDockWidget>("TZelMathF");
  const auto& table = Find<QTableWidget>("SGMath");
  for (const bool itself : {false, true}) {
    math.setFloating(false);
    if (itself) math.setTitleBarWidget(new QLabel(math.windowTitle()));
    QCoreApplication::processEvents();
    math.setFloating(true);
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    EXPECT_EQ(table.verticalScrollBar()->maximum(), 0) << itself;
    EXPECT_EQ(table.horizontalScrollBar()->maximum(), 0) << itself;
    EXPECT_GE(table.viewport()->height(), table.verticalHeader()->length()) << itself;
  }
}

}  // namespace
}  // namespace torvane
