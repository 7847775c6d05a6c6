#include "ui/desk/control_panel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTimer>

#include "desktop.h"
#include "support/one_state_model.h"
#include "ui/session/loop_shelf.h"

namespace torvane {
namespace {

using test::Messages;
using test::OneStateModel;

class ControlPanelTest : public test::Desktop {
 protected:
  double Time() { return Panel->Model()->Time(); }
  // A long chunk lies ahead of a model without instruments, so the equation itself ends the run.
  template <typename Equation>
  OneStateModel& MakeCurrent(Equation equation) {
    auto model = std::make_unique<OneStateModel>(0.01, 1.0, equation);
    OneStateModel& current = *model;
    Panel->MakeCurrent(std::move(model));
    return current;
  }
};

// Where editors go to the end of a line with Ctrl+E, say.
TEST_F(ControlPanelTest, AKeyOfTheWindowIsNoneOfAnEdits) {
  Find<QAction>("MIPoles").setShortcut(QKeySequence::SelectAll);
  Play("click SGConsts[KVP]; key SGConsts F2; key focus Ctrl+A -> PolesPanel shown");
  Play(
      "click SGConsts[KVP]; keys focus 7; key focus Ctrl+A -> PolesPanel hidden; "
      "saved Constant,KVP,7");
}

TEST_F(ControlPanelTest, AListThatIsOpenStaysWhereItIsWhenALoopComes) {
  auto& list = Find<QComboBox>("ModelCmB");
  Play("box FirstLoop.mo; click MIOpenLoop -> ModelCmB=FirstLoop");
  list.showPopup();
  list.view()->setCurrentIndex(list.model()->index(7, 0));
  const int before = list.count();
  Play("put " + LoopShelf::Folder().toStdString() + "/aaa.mo model Aaa\\nend Aaa;");
  EXPECT_TRUE(WaitFor([&] { return list.count() > before; }));
  EXPECT_EQ(list.view()->currentIndex().row(), 7);
  QFile::remove(LoopShelf::Folder() + "/aaa.mo");
}

// The key that chooses a model may be that of a window that goes with the model.
TEST_F(ControlPanelTest, AModelIsChosenWhenTheKeyThatChoseItIsDone) {
  Play("click SGConsts[KVP]; key SGConsts Return -> TZelAdjustF shown");
  const QPointer<QWidget> adjust = &Find<QWidget>("TZelAdjustF");
  auto& list = Find<QComboBox>("ModelCmB");
  list.showPopup();
  list.view()->setCurrentIndex(list.model()->index(7, 0));
  bool stayed = false;
  QObject::connect(&list, &QComboBox::activated, &list, [&] { stayed = !adjust.isNull(); });
  QTest::keyPress(adjust->windowHandle(), Qt::Key_Return);
  EXPECT_TRUE(stayed);
  EXPECT_TRUE(WaitFor([&] { return !adjust; }));
  EXPECT_EQ(Panel->Model()->Name(), list.itemText(7).toStdString());
}

// It shows where it stopped, six digits of it, and paints at most thirty frames a second and one.
TEST_F(ControlPanelTest, TheTimeIsShownAtMostOnceAFrame) {
  QElapsedTimer wall;
  wall.start();
  Click("SBRun");
  ASSERT_TRUE(WaitFor([&] { return Panel->Frames() >= 5; }));
  Click("SBStop");
  EXPECT_LE(Panel->Frames(), wall.elapsed() / 33 + 1);
  const double stopped = Time();
  Play("-> LTime=" + QString::number(stopped, 'g', 6).toStdString());
  const int frames = Panel->Frames();
  EXPECT_FALSE(QTest::qWaitFor([&] { return Time() > stopped || Panel->Frames() > frames; }, 100));
}

TEST_F(ControlPanelTest, ASlowPaceHoldsTheModelBack) {
  QElapsedTimer wall;
  // A model that lags behind a pace may catch up, so the clock starts with the pace itself, and no
  // event comes between.
  const auto paced = [&](int pace, double share, double least) {
    const double from = Time();
    wall.start();
    Find<QComboBox>("CmBPace").setCurrentIndex(pace);
    ASSERT_TRUE(WaitFor([&] { return Time() >= from + least; })) << pace;
    const double reached = Time();
    EXPECT_LE(reached, from + share * static_cast<double>(wall.nsecsElapsed()) * 1e-9 + 2e-5)
        << pace;
  };
  Click("SBRun");
  paced(3, 0.01, 2e-3);
  EXPECT_GT(Panel->Frames(), 0);
  paced(1, 1.0, 0.05);
  paced(0, 1e9, 0.1);
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
  EXPECT_TRUE(WaitFor([&] { return splash.isNull(); }));
}

TEST_F(ControlPanelTest, TheSimulationStandsStillWhileABoxIsOpen) {
  Click("SBRun");
  ASSERT_TRUE(WaitFor([&] { return Time() > 0.0; }));
  double before = 0.0;
  QTimer::singleShot(0, Panel.get(), [&] {
    before = Time();
    QTimer::singleShot(50, QApplication::activeModalWidget(), &QWidget::close);
  });
  Trigger("MIAbout");
  EXPECT_GT(before, 0.0);
  EXPECT_EQ(Time(), before);
  EXPECT_TRUE(WaitFor([&] { return Time() > before; }));
}

TEST_F(ControlPanelTest, AModelThatCannotBeBuiltIsReported) {
  Find<QComboBox>("ModelCmB").addItem("17-1 Perpetual Motion");
  Play(R"(model 17-1 Perpetual Motion -> report Error: Could not find model 17-1 Perpetual Motion
          -> ModelCmB=2-1 PI+ Controller)");
  // The first one ends the program.
  Panel = std::make_unique<ControlPanel>(Data, "17-1 Perpetual Motion");
  EXPECT_EQ(Reports.Take(), (Messages{"Fatal Error: Fault in LoadModel",
                                      "Fatal Error: Fault in TZelControlPanelF :: FormCreate"}));
  EXPECT_TRUE(Reports.Ended);
  EXPECT_EQ(Panel->Model(), nullptr);
  EXPECT_TRUE(Panel->close());
}

// As at the end of a session of the display, or on a signal.
TEST_F(ControlPanelTest, EndsWithItsWindowAndADockedPaneOpen) {
  Panel->show();
  Trigger("MIDiagramPane");
  const QWidget* const panel = Panel.get();
  int hidden = 0;
  QObject::connect(&Find<QDockWidget>("ModelPictureF"), &QDockWidget::visibilityChanged, qApp,
                   [&](bool visible) {
                     hidden += visible ? 0 : 1;
                     EXPECT_TRUE(visible || qobject_cast<const ControlPanel*>(panel));
                   });
  Panel.reset();
  EXPECT_GT(hidden, 0);
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
  for (const bool reset : {false, true}) {
    Reports.Answer = reset;
    Click("SBRun");
    Messages reports;
    ASSERT_TRUE(WaitFor([&] { return !(reports = Reports.Take()).empty(); }));
    EXPECT_FALSE(Panel->Running());
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_TRUE(reports[0].starts_with(question) && reports[0].find("\"x\"") < reports[0].size());
    EXPECT_EQ(model.X.Value == 1.0, reset);
  }
  model.X.Value = 5.0;
  Trigger("MIResetVariables");
  EXPECT_EQ(model.X.Value, 1.0);
  unstable = false;  // it runs again
  Play(
      "click SBRun -> SBStop on; report Error: The following run-time error occurred:   stable "
      "again.\\nThe model will be automatically stopped.");
}

}  // namespace
}  // namespace torvane
