#include "ui/panes/constants/adjust_dialog.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QMdiSubWindow>
#include <QScreen>
#include <QSlider>
#include <QTableWidget>

#include "core/constant.h"
#include "desktop.h"
#include "models/catalogue.h"
#include "ui/panes/constants/constants_grid.h"
#include "ui/widgets/slider_scale.h"

namespace torvane {
namespace {

class AdjustDialogTest : public test::Desktop {
 protected:
  QTableWidget& Grid() { return Find<QTableWidget>("SGConsts"); }
  /// By a double click on the constant's value, or by Enter.
  TZelAdjustF& Open(const char* name, bool byEnter = false) {
    const int row = Grid().findItems(name, Qt::MatchExactly).front()->row();
    const QRect cell = Grid().visualItemRect(Grid().item(row, ConstantsGrid::ValueColumn));
    Grid().setCurrentCell(row, ConstantsGrid::ValueColumn);
    if (byEnter) {
      QTest::keyClick(&Grid(), Qt::Key_Return);
    } else {
      QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, cell.center());
      QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, cell.center());
    }
    for (auto* dialog : Panel->findChildren<TZelAdjustF*>()) {
      if (dialog->isVisible() && dialog->windowTitle() == name) return *dialog;
    }
    throw std::runtime_error("the dialog did not open");
  }
  template <typename Control = QAbstractButton>
  static Control& In(TZelAdjustF& dialog, const char* name) {
    return *dialog.findChild<Control*>(name);
  }
  static void Press(TZelAdjustF& dialog, const char* button) {
    QTest::mouseClick(&In(dialog, button), Qt::LeftButton);
    QCoreApplication::processEvents();
  }
  /// Which of the six step buttons can be pressed.
  static std::pair<bool, bool> DownAndUp(TZelAdjustF& dialog) {
    const bool down = In(dialog, "BBDown").isEnabled();
    const bool up = In(dialog, "BBUp").isEnabled();
    for (const char* name : {"BBNudgeDown", "BBDinkyNudgeDown"}) {
      EXPECT_EQ(In(dialog, name).isEnabled(), down);
    }
    for (const char* name : {"BBNudgeUp", "BBDinkyNudgeUp"}) {
      EXPECT_EQ(In(dialog, name).isEnabled(), up);
    }
    return {down, up};
  }
  int Undos() {
    int count = 0;
    for (; Bench().History().CanUndo(); ++count) Bench().History().Undo();
    return count;
  }
};

TEST_F(AdjustDialogTest, EveryButtonActsOnConstantEditAndGrid) {
  Constant& gain = Const("KVFR");  // -100 to 200 per cent
  TZelAdjustF& dialog = Open("KVFR");
  const std::pair<const char*, double> presses[] = {
      {"BBUp", 5.0},        {"BBDown", 1.0},          {"BBNudgeUp", 2.5},
      {"BBNudgeDown", 1.7}, {"BBDinkyNudgeUp", 2.08}, {"BBDinkyNudgeDown", 1.94},
      {"BChgSign", -2.0}};
  const int row = Grid().currentRow();
  for (const auto& [button, expected] : presses) {
    gain.Set(2.0);
    Press(dialog, button);
    EXPECT_EQ(gain.Value(), expected) << button;
    EXPECT_EQ(In<QLineEdit>(dialog, "EValue").text().toDouble(), expected);
    EXPECT_EQ(Grid().item(row, ConstantsGrid::ValueColumn)->text().toDouble(), expected);
    EXPECT_EQ(DownAndUp(dialog), std::pair(true, true));
  }
  QTest::mouseDClick(&In<QWidget>(dialog, "LUnits"), Qt::LeftButton);
  EXPECT_EQ(gain.Value(), 0.0);
  gain.Set(200.0);
  EXPECT_EQ(DownAndUp(dialog), std::pair(true, false));
  gain.Set(-100.0);
  EXPECT_EQ(DownAndUp(dialog), std::pair(false, true));
  QLineEdit& edit = In<QLineEdit>(dialog, "EValue");
  edit.selectAll();
  QTest::keyClicks(&edit, "50m");
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(gain.Value(), 0.05);
  EXPECT_TRUE(dialog.isVisible());
  Press(dialog, "BBOK");
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(gain.Value(), 0.05);
}

TEST_F(AdjustDialogTest, CancelReturnsToTheValueOfTheOpeningToItsLastDigit) {
  Constant& gain = Const("KVP");
  gain.Set(0.123456789);
  TZelAdjustF* dialog = &Open("KVP", true);
  Press(*dialog, "BBCancel");
  EXPECT_EQ(gain.Value(), 0.123456789);
  EXPECT_EQ(Undos(), 1);
  gain.Set(0.123456789);
  const auto escape = [&] { QTest::keyClick(dialog, Qt::Key_Escape); };
  const auto frame = [&] { dialog->close(); };
  for (const auto& leave : std::initializer_list<std::function<void()>>{escape, frame}) {
    Undos();
    gain.Set(0.123456789);
    dialog = &Open("KVP", true);
    Press(*dialog, "BBUp");
    Press(*dialog, "BBUp");
    leave();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(gain.Value(), 0.123456789);
    EXPECT_EQ(Undos(), 4);
  }
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(AdjustDialogTest, AHeldButtonAndADragAreOneChangeEach) {
  Constant& gain = Const("KVP");
  const double before = gain.Value();
  TZelAdjustF& dialog = Open("KVP");
  QAbstractButton& up = In(dialog, "BBDinkyNudgeUp");
  up.setAutoRepeatDelay(10);
  up.setAutoRepeatInterval(10);
  QTest::mousePress(&up, Qt::LeftButton);
  const double some = 1.5 * before;
  EXPECT_TRUE(QTest::qWaitFor([&] { return gain.Value() > some; }));
  QTest::mouseRelease(&up, Qt::LeftButton);
  QCoreApplication::processEvents();
  QSlider& slider = In<QSlider>(dialog, "SLValue");
  QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 4, slider.height() / 2});
  for (const double share : {0.2, 0.4, 0.9}) {
    slider.setValue(static_cast<int>(share * slider.maximum()));
  }
  QTest::mouseRelease(&slider, Qt::LeftButton);
  EXPECT_NEAR(gain.Value(), 30.6, 0.01);  // 100 less a tenth of what is above 0.72e-3
  EXPECT_EQ(Undos(), 2);
  EXPECT_EQ(gain.Value(), before);
}

// A default far below its upper limit stood at the very left, where nothing smaller could be had.
TEST_F(AdjustDialogTest, TheSliderHasRoomAroundEveryDefault) {
  for (int index = 0; index < static_cast<int>(ModelNames().size()); ++index) {
    const auto model = LoadModel(index);
    for (Constant* constant : model->Bench().Constants()) {
      const double usual = constant->Value();
      if (constant->IsList() || usual == 0.0) continue;
      const std::string which = ModelNames()[index] + ' ' + constant->Name();
      const double at = FractionOf(*constant);
      EXPECT_GT(at, 0.03) << which;
      EXPECT_NEAR(ValueAt(*constant, at), usual, 0.005 * usual) << which;  // its three digits
      // A hundredth of the way is a step that a hand can use.
      EXPECT_NEAR(ValueAt(*constant, at - 0.01), usual, 0.25 * usual) << which;
    }
  }
}

TEST_F(AdjustDialogTest, AListStepsThroughItsChoices) {
  ChooseModel("4-1 Digital PI Controller");
  Constant& list = Const("Feedback");
  TZelAdjustF& dialog = Open("Feedback");
  EXPECT_FALSE(In(dialog, "BChgSign").isVisible());
  EXPECT_EQ(DownAndUp(dialog), std::pair(false, true));
  Press(dialog, "BBDinkyNudgeUp");
  EXPECT_EQ(In<QLineEdit>(dialog, "EValue").text(), "Encoder");
  EXPECT_EQ(DownAndUp(dialog), std::pair(true, false));
  In<QSlider>(dialog, "SLValue").setValue(0);
  EXPECT_EQ(list.Choice(), 0);
  Press(dialog, "BBCancel");
}

TEST_F(AdjustDialogTest, OneWindowAConstantStaysWhereItWasPutAndOnTheDisplay) {
  TZelAdjustF& dialog = Open("KVP");
  dialog.move(50, 60);
  Press(dialog, "BBOK");
  EXPECT_EQ(&Open("KVP"), &dialog);
  EXPECT_EQ(dialog.pos(), QPoint(50, 60));
  EXPECT_GE(In<QWidget>(dialog, "LUnits").width(), 40);  // a place to double-click without a unit
  TZelAdjustF& other = Open("KVI");
  EXPECT_NE(&other, &dialog);
  other.move(100000, -100000);
  Find<QWidget>("TZelScopeF").parentWidget()->hide();
  EXPECT_FALSE(dialog.isVisible() || other.isVisible());
  // The next start of the program; the display has become too small for where one was left.
  Panel = std::make_unique<TZelControlPanelF>(Data);
  Panel->show();
  EXPECT_EQ(Open("KVP").pos(), QPoint(50, 60));
  const TZelAdjustF& again = Open("KVI");
  EXPECT_TRUE(again.screen()->availableGeometry().contains(again.frameGeometry()));
}

}  // namespace
}  // namespace torvane
