#include "ui/panes/scope/scope_window.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMdiSubWindow>
#include <QRadioButton>
#include <QSplitter>
#include <QTableWidget>

#include "core/text.h"
#include "desktop.h"
#include "instruments/scope/scope_cursors.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

using test::Messages;

class ScopeWindowTest : public test::Desktop {
 protected:
  ZelScope& Scope() {
    return static_cast<ZelScope&>(*Bench().Instruments(InstrumentKind::Scope).front());
  }
  QComboBox& List(const char* name) { return Find<QComboBox>(name); }
  ZelChannel& Channel() { return *Scope().Channels()[List("CmBVertChan").currentIndex()]; }
  // A button of a name that other windows have as well.
  void Press(const char* name) {
    Find<QWidget>("TZelScopeF").findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
  }
  void RunFor(double simulated) {
    const double until = Panel->Model()->Time() + simulated;
    Click("SBRun");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() >= until; }, 30000));
    Click("SBStop");
  }
  // Pixels of the screen in the colours of the model's two traces, black and blue.
  int TracePixels() {
    const QImage image = Find<QWidget>("PBScreen").grab().toImage();
    int count = 0;
    for (int y = 10; y < image.height() * 4 / 5; ++y) {
      for (int x = image.width() / 5; x < image.width() - 20; ++x) {
        const QColor colour = image.pixelColor(x, y);
        count += colour.red() < 60 && colour.green() < 60;
      }
    }
    return count;
  }
};

TEST_F(ScopeWindowTest, TheScreenFollowsAResize) {
  RunFor(0.1);
  auto& frame = *qobject_cast<QMdiSubWindow*>(Find<QWidget>("TZelScopeF").parentWidget());
  frame.resize(frame.width() - 100, frame.height() - 80);
  EXPECT_GT(TracePixels(), 0);  // painted anew, though stopped
}

// A screen of three centuries: no sample is due for months of simulated time.
TEST_F(ScopeWindowTest, EveryTimeBaseLeavesTheWindowsAlive) {
  Type("EHorizScale", "1e9");
  Click("SBRun");
  QElapsedTimer timer;
  timer.start();
  for (int turn = 0; turn < 20; ++turn) QCoreApplication::processEvents();
  // Each turn of the message loop has one pass of 10 ms, or a frame.
  EXPECT_LT(timer.elapsed(), 20 * 50);
  Click("SBStop");
  EXPECT_GT(Panel->Model()->Time(), 0.0);
}

TEST_F(ScopeWindowTest, VerticalScaleAndOffset) {
  Type("EVertScale", "-2");
  EXPECT_EQ(Channel().Vertical().Scale, -2.0);
  Click("BVScaleUp");
  EXPECT_EQ(Text("EVertScale"), "-5");
  Click("BBVertScaleSign");
  Click("BVScaleDown");
  EXPECT_EQ(Text("EVertScale"), "2");
  Type("EVertOffset", "1");
  Click("BVOffsetUp");
  EXPECT_EQ(Channel().Vertical().Offset, 3.0);
  Click("BVertOffsetSign");
  Click("BVOffsetDown");
  EXPECT_EQ(Text("EVertOffset"), "-5");
  Click("BVertZero");
  EXPECT_EQ(Text("EVertOffset"), "0");

  Type("EVertScale", "-0.5");
  Click("BVOffsetUp");
  EXPECT_EQ(Text("EVertOffset"), "-0.5");
  Type("EVertScale", "0");
  EXPECT_EQ(Reports.Take(), Messages{"Error: Scale cannot be set to zero"});
  EXPECT_EQ(Text("EVertScale"), "-0.5");
  Type("EVertScale", "nan");
  EXPECT_EQ(Reports.Take(), Messages{"Message Box: Cannot convert \"nan\" to a Number"});
  EXPECT_EQ(Channel().Vertical().Scale, -0.5);
}

TEST_F(ScopeWindowTest, AutoAndFillScaleToTheScreen) {
  RunFor(0.1);
  Type("EVertScale", "1000");
  Click("BVertFill");
  EXPECT_LT(Text("EVertScale").toDouble(), 100.0);
  Type("EVertOffset", "3");
  Click("BVertAuto");
  EXPECT_EQ(Text("EVertOffset"), "0");
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(ScopeWindowTest, FillOfAFlatTraceIsNoted) {
  Click("BVertFill");
  EXPECT_EQ(Reports.Take(), Messages{"Note: Cannot Fill because Max = Min"});
}

TEST_F(ScopeWindowTest, HorizontalScaleSetsTheTimeBase) {
  Type("EHorizScale", "0.004");
  EXPECT_EQ(Scope().SampleInterval(), 0.004 * 10.0 / 400.0);
  Click("BHorizScaleUp");
  EXPECT_EQ(Text("EHorizScale"), "0.005");
  Click("BHorizScaleDown");
  EXPECT_EQ(Text("EHorizScale"), "0.002");
  Type("EHorizScale", "0");
  EXPECT_EQ(Reports.Take(), Messages{"Error: Horizontal scale cannot be set to zero"});
}

TEST_F(ScopeWindowTest, AnotherChannelAsXAxisTakesTheTriggersLevelAway) {
  List("CmBHorizChan").setCurrentIndex(2);
  EXPECT_TRUE(Scope().XYMode());
  EXPECT_EQ(Scope().HorizontalChannel(), Scope().Channels()[1].get());
  const auto enabled = [&](std::initializer_list<const char*> names) {
    for (const char* name : names) EXPECT_EQ(Find<QWidget>(name).isEnabled(), Scope().XYMode());
  };
  const auto ofTheXYAxis = {"BBHorizScaleSign", "EHorizOffset",      "BHorizOffsetUp",
                            "BHorizOffsetDown", "BBHorizOffsetSign", "BHorizZero"};
  enabled(ofTheXYAxis);
  const auto ofTheTimeAxis = {"LTrigSource", "CmBTrigSource", "RGTrigSlope",  "LTrigLevel",
                              "ETrigLevel",  "LTrigPosition", "ETrigPosition"};
  for (const char* name : ofTheTimeAxis) EXPECT_FALSE(Find<QWidget>(name).isEnabled()) << name;
  Type("EHorizScale", "2");
  Type("EHorizOffset", "1");
  Click("BHorizOffsetUp");
  EXPECT_EQ(Text("EHorizOffset"), "3");
  Click("BBHorizOffsetSign");
  EXPECT_EQ(Text("EHorizOffset"), "-3");
  Click("BHorizZero");
  Click("BBHorizOffsetSign");
  EXPECT_EQ(Text("EHorizOffset"), "0");
  RunFor(0.1);
  List("CmBHorizChan").setCurrentIndex(0);
  EXPECT_FALSE(Scope().XYMode());
  enabled(ofTheXYAxis);
  for (const char* name : ofTheTimeAxis) EXPECT_TRUE(Find<QWidget>(name).isEnabled()) << name;
}

TEST_F(ScopeWindowTest, TracesAreShownAndHidden) {
  ASSERT_TRUE(Find<QCheckBox>("CBVertShow").isChecked());
  EXPECT_EQ(List("CmBVertChan").currentText(), QString::fromStdString(Channel().Name() + " (Blk)"));
  Click("CBVertShow");
  EXPECT_FALSE(Channel().Displayed());
  EXPECT_EQ(List("CmBVertChan").currentText(), QString::fromStdString(Channel().Name()));
  QTest::mouseDClick(&List("CmBVertChan"), Qt::LeftButton);
  EXPECT_TRUE(Channel().Displayed());
  EXPECT_TRUE(Find<QCheckBox>("CBVertShow").isChecked());
  // The first click has opened the list, which takes the second.
  List("CmBVertChan").showPopup();
  QTest::mouseDClick(List("CmBVertChan").view()->viewport(), Qt::LeftButton);
  EXPECT_FALSE(Channel().Displayed());
  EXPECT_FALSE(List("CmBVertChan").view()->isVisible());
}

TEST_F(ScopeWindowTest, TriggerSettingsReachTheTrigger) {
  Click("PageTrigger");
  const ZelTrigger& trigger = Scope().Trigger();
  EXPECT_TRUE(Find<QRadioButton>("RBTrigAuto").isChecked());
  Click("RBTrigNormal");
  EXPECT_EQ(trigger.Mode(), SweepMode::Normal);
  Click("RBTrigCont");
  EXPECT_EQ(trigger.Mode(), SweepMode::Cont);
  Click("RBTrigNeg");
  EXPECT_FALSE(trigger.PositiveSlope());
  Type("ETrigLevel", "2.5");
  EXPECT_EQ(trigger.Level(), 2.5);
  Type("ETrigPosition", "50");
  EXPECT_EQ(trigger.Position(), 50.0);
  Type("ETrigPosition", "150");
  EXPECT_EQ(Text("ETrigPosition"), "100");
  Type("ETrigPosition", "-0");
  EXPECT_EQ(Text("ETrigPosition"), "0");
  List("CmBTrigSource").setCurrentIndex(1);
  EXPECT_EQ(&trigger.Source(), Scope().Channels()[1].get());
}

TEST_F(ScopeWindowTest, ExtrasOfTheTriggerReachItAndCanBeUndone) {
  Click("PageTrigger");
  struct Extra {
    const char* Switch;
    const char* Edit;
    const char* Typed;
    const char* Stored;
  };
  const Extra extras[] = {{"CBTrigInitDelay", "ETrigTInitDelay", "0.5", "0.5"},
                          {"CBTrigCountEvents", "ETrigNumEvents", "0", "1"},
                          {"CBTrigDelayAfter", "ETrigTDelayAfter", "-1", "0"}};
  for (const Extra& extra : extras) {
    EXPECT_FALSE(Find<QWidget>(extra.Edit).isEnabled()) << extra.Edit;
    Click(extra.Switch);
    EXPECT_TRUE(Find<QWidget>(extra.Edit).isEnabled()) << extra.Edit;
    Type(extra.Edit, extra.Typed);
    EXPECT_EQ(Text(extra.Edit), extra.Stored);
  }
  Click("CBTrigRoll");
  const ZelTrigger& trigger = Scope().Trigger();
  EXPECT_TRUE(trigger.InitialDelay() && trigger.CountEvents() && trigger.DelayAfter());
  EXPECT_TRUE(trigger.Roll());
  EXPECT_EQ(trigger.InitialDelayTime(), 0.5);
  while (Bench().History().CanUndo()) Bench().History().Undo();
  EXPECT_FALSE(Find<QCheckBox>("CBTrigRoll").isChecked());
  for (const Extra& extra : extras) EXPECT_FALSE(Find<QWidget>(extra.Edit).isEnabled());
  EXPECT_EQ(Text("ETrigTInitDelay"), "0");
}

// Controls that did not fit were cut, or reached by a scroll bar only.
TEST_F(ScopeWindowTest, EveryPageFitsTheSmallestAndTheUsualWindow) {
  for (int model = 0; model < Find<QComboBox>("ModelCmB").count(); ++model) {
    ChooseModel(Find<QComboBox>("ModelCmB").itemText(model));
    for (const QSize size : {QSize(800, 600), Small}) {
      Panel->resize(size);
      QCoreApplication::processEvents();
      auto& scope = Find<QWidget>("TZelScopeF");
      const QWidget& area = *scope.parentWidget()->parentWidget();
      EXPECT_TRUE(area.rect().contains(scope.parentWidget()->geometry()));
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
      if (size == Small) {
        EXPECT_GE(Find<QWidget>("PBScreen").height(), Panel->height() * 6 / 10);
      }
    }
  }
}

TEST_F(ScopeWindowTest, ASingleShotAndAFullScreenStopTheRun) {
  for (const char* box : {"CBSingleShot", "CBStopModel"}) {
    Click(box);
    EXPECT_EQ(Scope().SingleShot(), box == std::string("CBSingleShot"));
    EXPECT_NE(Scope().StopsModel(), Scope().SingleShot());
    for (int run = 0; run < 2; ++run) {
      const double from = Panel->Model()->Time();
      Click("SBRun");
      ASSERT_TRUE(QTest::qWaitFor([&] { return Find<QAbstractButton>("SBStop").isChecked(); }));
      EXPECT_GT(Panel->Model()->Time(), from);
    }
    Trigger("MIUndo");
    EXPECT_FALSE(Find<QAbstractButton>(box).isChecked());
  }
}

TEST_F(ScopeWindowTest, TheLampShowsTriggerEvents) {
  const auto colour = [&] { return Find<QLabel>("TriggeredP").palette().color(QPalette::Window); };
  EXPECT_EQ(colour(), QColor(0xc0c0c0));
  Click("SBRun");
  EXPECT_TRUE(QTest::qWaitFor([&] { return colour() == QColor(0x00ff00); }));
  Click("SBStop");
  EXPECT_TRUE(QTest::qWaitFor([&] { return colour() == QColor(0xc0c0c0); }, 2000));
}

TEST_F(ScopeWindowTest, CursorsAreDraggedReadAndUndone) {
  Click("CBSingleShot");  // a whole sweep stays on the screen
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Find<QAbstractButton>("SBStop").isChecked(); }));
  QCoreApplication::processEvents();
  Click("PageMeasure");
  Press("SBTwoCursors");
  auto& table = Find<QTableWidget>("SGCursors");
  auto& screen = Find<ScopePaintBox>("PBScreen");
  ASSERT_TRUE(table.isVisible());
  const auto drag = [&](int from, int to) {
    QTest::mousePress(&screen, Qt::LeftButton, {}, {from, 50});
    for (const int x : {(from + to) / 2, to}) QTest::mouseMove(&screen, {x, 50});
    QTest::mouseRelease(&screen, Qt::LeftButton, {}, {to, 50});
  };
  drag(220, 300);  // the second cursor, which stands further right
  drag(110, 500);  // the first
  drag(280, 400);
  EXPECT_EQ(Scope().Cursors().X[0] - Scope().Cursors().X[1], 100);
  const CursorReading two = ReadCursors(Scope(), screen.Screen(), screen.Pixels()).value();
  EXPECT_NEAR(two.Time, 100.0 / screen.Pixels().Width() * 0.02, 0.0001);
  ASSERT_EQ(table.rowCount(), 2);
  EXPECT_EQ(table.item(1, 1)->text(), QString::fromStdString(FormatEdit(two.Values[1])));
  for (int change = 0; change < 4; ++change) Click("SBUndo");
  EXPECT_FALSE(table.isVisible());
  EXPECT_EQ(Scope().Cursors().X, ScopeCursors().X);

  Press("SBOneCursor");
  EXPECT_TRUE(table.isVisible());
  Type("EHorizScale", "1e9");  // nothing of its sweep stands on the screen yet
  Scope().Trigger().SetMode(SweepMode::Cont);
  RunFor(0.01);
  EXPECT_TRUE(QTest::qWaitFor([&] { return table.item(1, 1)->text() == "Unavailable"; }, 3000));
  List("CmBHorizChan").setCurrentIndex(1);
  EXPECT_FALSE(table.isVisible());
  Press("SBTwoCursors");
  EXPECT_EQ(Reports.Take(), Messages{"Note: Scope cursors are not active in X-Y Mode"});
  List("CmBHorizChan").setCurrentIndex(0);
  EXPECT_TRUE(table.isVisible());
}

TEST_F(ScopeWindowTest, TracesAreMeasuredWhileTheModelRuns) {
  Click("PageMeasure");
  Click("SBMath");
  const QTableWidget& table = Find<QTableWidget>("SGMath");
  ASSERT_TRUE(table.isVisible());
  const auto figure = [&](int row, int column) { return table.item(row, column)->text(); };
  constexpr int peakToPeak = 4;
  constexpr int overshoot = 5;
  Click("SBRun");
  // The very first sweep begins with a step from 0.
  const auto wholeStep = [&] {
    return figure(peakToPeak, 1) == "40" && figure(overshoot, 2) != "Unavailable";
  };
  EXPECT_TRUE(QTest::qWaitFor(wholeStep, 10000));
  EXPECT_EQ(figure(overshoot, 1), "Unavailable");  // the command itself
  // Between two cursors that stand before the step.
  Scope().SetCursorMode(2);
  EXPECT_TRUE(QTest::qWaitFor([&] { return figure(peakToPeak, 1) == "0"; }, 10000));
  EXPECT_EQ(figure(overshoot, 2), "Unavailable");
  Click("SBStop");
  table.window()->close();
  EXPECT_FALSE(Find<QAbstractButton>("SBMath").isChecked());
}

TEST_F(ScopeWindowTest, TheScreenGetsTheRoomOfWhatIsHidden) {
  const auto height = [&] {
    QCoreApplication::processEvents();
    return Find<QWidget>("PBScreen").height();
  };
  const int before = height();
  Click("SBHide");
  EXPECT_GT(height(), before);
  Click("PageTrigger");
  EXPECT_EQ(height(), before);
  const int plate = Find<ScopePaintBox>("PBScreen").Pixels().Height();
  Click("PageMeasure");
  Click("SBScaleDisplay");
  EXPECT_GT(Find<ScopePaintBox>("PBScreen").Pixels().Height(), plate);
}

TEST_F(ScopeWindowTest, TheTimeBaseIsFittedToTheCommand) {
  const std::pair<const char*, const char*> scales[] = {
      {"20", "0.01"}, {"21", "0.01"}, {"15", "0.02"}};
  for (const auto& [frequency, scale] : scales) {
    Type("EFreqHz", frequency);
    Click("BHorizAuto");
    EXPECT_EQ(Text("EHorizScale"), scale) << frequency;
  }
}

TEST_F(ScopeWindowTest, TheConstantsPanelIsRecordedAndRestored) {
  auto& splitter = Find<QSplitter>("Splitter1");
  auto& constants = Find<QWidget>("SGConsts");
  const int before = constants.width();
  QWidget& handle = *splitter.handle(1);
  const QPoint grip = handle.rect().center();
  QTest::mousePress(&handle, Qt::LeftButton, {}, grip);
  for (const int x : {-20, -60}) QTest::mouseMove(&handle, grip + QPoint(x, 0));
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, grip);
  QCoreApplication::processEvents();
  EXPECT_EQ(Scope().ConstForm().Width, constants.width());
  EXPECT_NE(constants.width(), before);
  Click("SBUndo");
  EXPECT_EQ(constants.width(), before);
  Scope().SetConstForm({true, 300, 120});
  EXPECT_EQ(constants.width(), 300);
  EXPECT_EQ(Find<QTableWidget>("SGConsts").columnWidth(0), 120);
  Scope().SetConstForm({false, 300, 120});
  EXPECT_EQ(splitter.sizes().value(1), 0);
}

TEST_F(ScopeWindowTest, SettingsChangedElsewhereAreShown) {
  Scope().SetVerticalScale(Channel(), 12.5);
  Scope().Trigger().SetMode(SweepMode::Normal);
  Find<TZelScopeF>("TZelScopeF").SettingsChanged();
  EXPECT_EQ(Text("EVertScale"), "12.5");
  EXPECT_TRUE(Find<QRadioButton>("RBTrigNormal").isChecked());
}

TEST_F(ScopeWindowTest, CannotBeClosed) {
  EXPECT_FALSE(Find<QWidget>("TZelScopeF").parentWidget()->close());
  EXPECT_EQ(Reports.Take(), Messages{"Note: Scope cannot be closed."});
}

}  // namespace
}  // namespace torvane
