#include "ui/desk/control_panel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTimer>

#include "core/constant.h"
#include "desktop.h"
#include "models/catalogue.h"
#include "support/one_state_model.h"

namespace torvane {
namespace {

using test::Desktop;
using test::Messages;
using test::OneStateModel;

class ControlPanelTest : public Desktop {
 protected:
  QComboBox& Selector() { return Find<QComboBox>("ModelCmB"); }
  QString TimeText() { return Find<QLabel>("LTime").text(); }
  bool Down(const char* button) { return Find<QAbstractButton>(button).isChecked(); }
  // A long chunk lies ahead of a model without instruments, so the equation itself ends the run.
  template <typename Equation>
  OneStateModel& MakeCurrent(Equation equation) {
    auto model = std::make_unique<OneStateModel>(0.01, 1.0, equation);
    OneStateModel& current = *model;
    Panel->MakeCurrent(std::move(model));
    return current;
  }
};

TEST_F(ControlPanelTest, StartsStoppedWithTheFirstModel) {
  EXPECT_EQ(Panel->windowTitle(), "Torvane--Melkorin, 2nd Edition");
  EXPECT_EQ(Selector().currentText(), "2-1 PI+ Controller");
  EXPECT_EQ(Selector().count(), 15);
  EXPECT_EQ(Selector().maxVisibleItems(), 20);
  EXPECT_TRUE(Down("SBStop"));
  EXPECT_FALSE(Down("SBRun"));
  EXPECT_EQ(TimeText(), "0");
  EXPECT_FALSE(Find<QAction>("MIUndo").isEnabled());
  EXPECT_FALSE(Find<QAction>("MIRedo").isEnabled());
  EXPECT_EQ(Panel->findChild<QTimer*>("Timer1"), nullptr);  // a member, not a child
  QTest::qWait(150);
  EXPECT_EQ(Panel->Model()->Time(), 0.0);
  EXPECT_EQ(Panel->Frames(), 0);
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(ControlPanelTest, RunSimulatesUntilStop) {
  Click("SBRun");
  EXPECT_FALSE(Down("SBStop"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Frames() >= 3; }));
  EXPECT_GT(Panel->Model()->Time(), 0.0);
  EXPECT_NE(TimeText(), "0");
  Click("SBStop");
  EXPECT_FALSE(Down("SBRun"));
  const double stoppedAt = Panel->Model()->Time();
  const int frames = Panel->Frames();
  // Stopping shows where it stopped, six digits of it.
  EXPECT_NEAR(TimeText().toDouble(), stoppedAt, stoppedAt * 1e-5);
  QTest::qWait(150);
  EXPECT_EQ(Panel->Model()->Time(), stoppedAt);
  EXPECT_EQ(Panel->Frames(), frames);
}

TEST_F(ControlPanelTest, OneKeyRunsAndStops) {
  QTest::keyClick(Panel.get(), Qt::Key_F9);
  EXPECT_TRUE(Down("SBRun"));
  EXPECT_EQ(Find<QAction>("MIRunStop").text(), "Stop");
  QTest::keyClick(Panel.get(), Qt::Key_F9);
  EXPECT_TRUE(Down("SBStop"));
  EXPECT_EQ(Find<QAction>("MIRunStop").text(), "Run");
  EXPECT_FALSE(Find<QWidget>("SBSave").isVisible() || Find<QWidget>("SBSave").isEnabled());
}

TEST_F(ControlPanelTest, ASlowPaceHoldsTheModelBack) {
  auto& pace = Find<QComboBox>("CmBPace");
  QElapsedTimer wall;
  wall.start();
  const auto seconds = [&] { return static_cast<double>(wall.nsecsElapsed()) * 1e-9; };
  pace.setCurrentText("1/100");
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > 2e-3; }));
  EXPECT_LE(Panel->Model()->Time(), 0.01 * seconds() + 2e-5);
  EXPECT_GT(Panel->Frames(), 0);
  const double before = Panel->Model()->Time();
  wall.start();
  pace.setCurrentText("Real time");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > before + 0.1; }));
  EXPECT_LE(Panel->Model()->Time(), before + seconds() + 2e-5);
  pace.setCurrentText("Fastest");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > before + 0.2; }));
}

TEST_F(ControlPanelTest, TheSplashLeavesTheKeysToThePanelAndGoesOnRun) {
  Panel->ShowAtStart(true);
  QPointer<QWidget> splash;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == "SplashF") splash = window;
  }
  ASSERT_NE(splash, nullptr);
  EXPECT_TRUE(splash->isVisible());
  EXPECT_TRUE(splash->windowFlags() & Qt::WindowDoesNotAcceptFocus);
  Click("SBRun");
  EXPECT_TRUE(QTest::qWaitFor([&] { return splash.isNull(); }));
}

TEST_F(ControlPanelTest, TheTimeIsPaintedAtMostOnceAFrame) {
  QElapsedTimer wall;
  wall.start();
  Click("SBRun");
  QTest::qWait(500);
  Click("SBStop");
  // Thirty a second, and one more when it stops; a busy machine shows fewer.
  EXPECT_LE(Panel->Frames(), wall.elapsed() / 33 + 1);
  EXPECT_GE(Panel->Frames(), 3);
}

TEST_F(ControlPanelTest, ChoosingAModelReplacesTheCurrentOne) {
  Click("SBRun");
  QTest::qWait(50);
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Panel->Model()->Name(), "3-1 PI Controller");
  EXPECT_TRUE(Down("SBStop"));
  EXPECT_EQ(Panel->Model()->Time(), 0.0);
  EXPECT_EQ(TimeText(), "0");
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(ControlPanelTest, ChangedConstantsAreNotDiscardedUnasked) {
  const char* const question =
      "Warning: Parameter values have changed since the last File Save.\r"
      "Those values will be lost.  Press OK to continue.";
  Const("KVP").Set(1.0);
  Reports.Answer = false;
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Reports.Take(), Messages{question});
  EXPECT_EQ(Panel->Model()->Name(), "2-1 PI+ Controller");
  EXPECT_EQ(Selector().currentText(), "2-1 PI+ Controller");
  Reports.Answer = true;
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Reports.Take(), Messages{question});
  EXPECT_EQ(Panel->Model()->Name(), "3-1 PI Controller");
}

TEST_F(ControlPanelTest, ChoosingThePresentModelBuildsItAnew) {
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > 0.0; }));
  Const("KVP").Set(1.0);
  Reports.Answer = false;
  ChooseModel("2-1 PI+ Controller");
  EXPECT_EQ(Reports.Take().size(), 1U);
  EXPECT_EQ(Const("KVP").Value(), 1.0);
  Reports.Answer = true;
  ChooseModel("2-1 PI+ Controller");
  EXPECT_EQ(Const("KVP").Value(), Const("KVP").Default());
  EXPECT_EQ(Panel->Model()->Time(), 0.0);
  EXPECT_TRUE(Down("SBStop"));
}

TEST_F(ControlPanelTest, TheSimulationStandsStillWhileABoxIsOpen) {
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > 0.0; }));
  double before = 0.0;
  double after = 0.0;
  QTimer::singleShot(0, Panel.get(), [&] {
    before = Panel->Model()->Time();
    QTimer::singleShot(100, Panel.get(), [&] {
      after = Panel->Model()->Time();
      QApplication::activeModalWidget()->close();
    });
  });
  Trigger("MIAbout");
  EXPECT_GT(before, 0.0);
  EXPECT_EQ(after, before);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > after; }));
}

TEST_F(ControlPanelTest, AFirstModelThatCannotBeBuiltEndsTheProgram) {
  Panel = std::make_unique<TZelControlPanelF>(Data, 15);
  EXPECT_EQ(Reports.Take(), (Messages{"Fatal Error: Fault in LoadModel",
                                      "Fatal Error: Fault in TZelControlPanelF :: FormCreate"}));
  EXPECT_TRUE(Reports.Ended);
  EXPECT_EQ(Panel->Model(), nullptr);
  EXPECT_TRUE(Panel->close());
}

TEST_F(ControlPanelTest, ClosingAsksAboutChangedConstants) {
  Const("KVP").Set(1.0);
  Reports.Answer = false;
  EXPECT_FALSE(Panel->close());
  EXPECT_EQ(Reports.Take(),
            Messages{"Warning: Parameter values have changed since the last File Save.\r"
                     "Those values will be lost.  Press OK to close."});
  Reports.Answer = true;
  EXPECT_TRUE(Panel->close());
}

TEST_F(ControlPanelTest, AnUnknownModelNameIsReported) {
  Selector().addItem("17-1 Perpetual Motion");
  ChooseModel("17-1 Perpetual Motion");
  EXPECT_EQ(Reports.Take(), Messages{"Error: Could not find model 17-1 Perpetual Motion"});
  EXPECT_EQ(Selector().currentText(), "2-1 PI+ Controller");
}

TEST_F(ControlPanelTest, EveryModelOpensAndRuns) {
  for (const std::string& name : ModelNames()) {
    ChooseModel(QString::fromStdString(name));
    ASSERT_EQ(Panel->Model()->Name(), name);
    Click("SBRun");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > 0.01; })) << name;
    Click("SBStop");
    EXPECT_EQ(Reports.Take(), Messages{}) << name;
  }
}

TEST_F(ControlPanelTest, UndoAndRedoFollowTheHistory) {
  const double before = Const("KVP").Value();
  Const("KVP").Set(1.25);
  EXPECT_EQ(Find<QAction>("MIUndo").text(), "Undo KVP = 1.25");
  EXPECT_TRUE(Find<QWidget>("SBUndo").isEnabled());
  Click("SBUndo");
  EXPECT_EQ(Const("KVP").Value(), before);
  EXPECT_EQ(Find<QAction>("MIUndo").text(), "Undo");
  EXPECT_FALSE(Find<QWidget>("SBUndo").isEnabled());
  EXPECT_EQ(Find<QAction>("MIRedo").text(), "Redo KVP = 1.25");
  Trigger("MIRedo");
  EXPECT_EQ(Const("KVP").Value(), 1.25);
  EXPECT_FALSE(Find<QWidget>("SBRedo").isEnabled());

  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Find<QAction>("MIUndo").text(), "Undo");
  EXPECT_FALSE(Find<QAction>("MIUndo").isEnabled());
}

TEST_F(ControlPanelTest, FileCommandsRestoreConstantsAndResetVariables) {
  Const("KVP").Set(1.25);
  Trigger("MIRestoreDefaults");
  EXPECT_EQ(Const("KVP").Value(), Const("KVP").Default());

  OneStateModel& model = MakeCurrent([](double, double) { return 0.0; });
  model.X.Value = 5.0;
  Trigger("MIResetVariables");
  EXPECT_EQ(model.X.Value, 1.0);
}

TEST_F(ControlPanelTest, AnOverflowStopsTheRunAndOffersAReset) {
  const char* const question =
      "Error: An overflow occurred, posibly because the state equation solver became unstable.\n"
      "The model will be automatically stopped.  Also, it is "
      "recommended that you reset the state variables.\n\nReset Variables?";
  bool unstable = true;
  OneStateModel& model = MakeCurrent([&](double, double x) {
    if (!unstable) throw std::runtime_error("stable again");
    return 1e6 * x;
  });
  Reports.Answer = false;
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Down("SBStop"); }));
  const auto asked = [&] {
    const Messages reports = Reports.Take();
    return reports.size() == 1 && reports[0].starts_with(question) &&
           reports[0].find("state \"x\"") != std::string::npos;
  };
  EXPECT_TRUE(asked());
  EXPECT_NE(model.X.Value, 1.0);

  Reports.Answer = true;
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Down("SBStop"); }));
  EXPECT_TRUE(asked());
  EXPECT_EQ(model.X.Value, 1.0);

  unstable = false;  // it runs again
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Down("SBStop"); }));
  EXPECT_EQ(Reports.Take(),
            Messages{"Error: The following run-time error occurred:   stable again.\n"
                     "The model will be automatically stopped."});
}

TEST_F(ControlPanelTest, EveryCommandThatShowsWorks) {
  QStringList commands;
  for (const QAction* title : Panel->menuBar()->actions()) {
    ASSERT_NE(title->menu(), nullptr);
    for (const QAction* action : title->menu()->actions()) {
      if (!action->objectName().isEmpty() && !action->menu()) commands << action->objectName();
    }
  }
  EXPECT_EQ(
      commands.join(" ").toStdString(),
      "MILoad MIRestoreDefaults MIResetVariables MISave MISaveAs MIResizeWhenLoading MIExit "
      "MIUndo MIRedo MIRunStop MIThemeSystem MIThemeLight MIThemeDark MIColoursApart "
      "MILinePatterns MIAddMeter MIFillScreen MICapture MIWideCapture MIGuide MIWhatsThis MIAbout");
  EXPECT_EQ(Find<QAction>("MIUndo").shortcut(), QKeySequence("Ctrl+Z"));
  EXPECT_EQ(Find<QAction>("MIRedo").shortcut(), QKeySequence("Ctrl+Y"));
}

}  // namespace
}  // namespace torvane
