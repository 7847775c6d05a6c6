#include "ui/panes/scope/scope_window.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QMdiArea>
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

// Controls that did not fit were cut, or reached by a scroll bar only.
TEST_F(ScopeWindowTest, EveryPageFitsTheSmallestAndTheUsualWindow) {
  for (int model = 0; model < Find<QComboBox>("ModelCmB").count(); ++model) {
    ChooseModel(Find<QComboBox>("ModelCmB").itemText(model));
    for (const QSize size : {QSize(800, 600), Small}) {
      Panel->resize(size);
      auto& scope = Find<QWidget>("TZelScopeF");
      for (const char* page : {"PageTrigger", "PageScales"}) {
        Click(page);
        QCoreApplication::processEvents();
        for (const QWidget* control : scope.findChildren<QWidget*>()) {
          if (!control->isVisible() || control->parentWidget() == &Find<QWidget>("SGConsts")) {
            continue;
          }
          EXPECT_TRUE(control->parentWidget()->rect().contains(control->geometry()) &&
                      (control->minimumWidth() > 0 ||
                       control->width() >= control->minimumSizeHint().width()))
              << model << ' ' << control->objectName().toStdString() << ' ' << size.width();
        }
      }
      EXPECT_GE(Screen().height(), Panel->height() * (size == Small ? 6 : 0) / 10);
    }
  }
}

TEST_F(ScopeWindowTest, TheScreenGetsTheRoomOfWhatIsHidden) {
  const int before = Height();
  Click("SBHide");
  EXPECT_GT(Height(), before);
  Click("PageTrigger");
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

TEST_F(ScopeWindowTest, TheLampShowsTriggerEvents) {
  const auto becomes = [&](QRgb colour) {
    return WaitFor([&] {
      return Find<QLabel>("TriggeredP").palette().color(QPalette::Window) == QColor(colour);
    });
  };
  EXPECT_TRUE(becomes(0xc0c0c0));
  Click("SBRun");
  EXPECT_TRUE(becomes(0x00ff00));
  Click("SBStop");
  EXPECT_TRUE(becomes(0xc0c0c0));
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
}

TEST_F(ScopeWindowTest, KeptTracesOutliveFilesButNotTheModel) {
  QTemporaryFile saved;
  ASSERT_TRUE(saved.open());
  saved.write(QByteArray::fromStdString(ModelFileText(*Panel->Model())));
  saved.close();
  Play("run 0.05; click PageMeasure; click SBMath; click BKeep -> BClearKept enabled");
  const auto header = [&](int column) {
    return Find<QTableWidget>("SGMath").horizontalHeaderItem(column)->text();
  };
  EXPECT_EQ(header(1) + "|" + header(2), "vC|vC kept");
  EXPECT_TRUE(Panel->Work().Open(saved.fileName()));
  Play("-> BClearKept enabled");
  Click("BClearKept");
  EXPECT_EQ(header(2), "vF");
  Play("run 0.05; click BKeep; model 3-1 PI Controller -> BClearKept disabled");
}

// The application's palette reaches windows by events of the running message loop.
TEST_F(ScopeWindowTest, TheThemeReachesScreenListsAndWorkspaceAtOnce) {
  const auto workspace = [&] {
    return Find<QMdiArea>("InstrumentArea").background().color().lightness();
  };
  const auto ground = [&](const ScopeColours& colours) {
    return WaitFor(
        [&] { return Picture().pixelColor(Picture().width() / 3, 60) == colours.Plate; });
  };
  const int before = workspace();
  Play("click MIThemeDark -> CmBVertChan=vC (Wht)");
  EXPECT_TRUE(ground(ScopeColours::Dark()));
  EXPECT_LT(workspace(), before);
  Play("click MIThemeLight -> CmBVertChan=vC (Blk)");
  EXPECT_TRUE(ground(ScopeColours::Light()));
}

TEST_F(ScopeWindowTest, PatternsAndColoursOfTracesAreChosenLive) {
  const QImage standard = Picture();
  Trigger("MIColoursApart");
  const QImage apart = Picture();
  EXPECT_NE(apart, standard);
  Trigger("MILinePatterns");
  EXPECT_NE(Picture(), apart);
  // Another model's windows have them too.
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Screen().Colours(), ScopeColours::Light(TraceColours::Apart));
}

}  // namespace
}  // namespace torvane
