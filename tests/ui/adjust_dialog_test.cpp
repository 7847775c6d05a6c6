#include "ui/panes/constants/adjust_dialog.h"

#include <QAbstractButton>
#include <QScreen>
#include <QSlider>

#include "core/constant.h"
#include "desktop.h"
#include "models/catalogue.h"
#include "ui/widgets/slider_scale.h"

namespace torvane {
namespace {

class AdjustDialogTest : public test::Desktop {
 protected:
  /// By a double click on the constant's value.
  AdjustDialog& Open(const std::string& name) {
    Play("click SGConsts[" + name + "]; double SGConsts[" + name + "] ->");
    for (auto* dialog : Panel->findChildren<AdjustDialog*>()) {
      if (dialog->isVisible() && dialog->windowTitle().toStdString() == name) return *dialog;
    }
    throw std::runtime_error("the dialog did not open");
  }
  template <typename Control = QAbstractButton>
  static Control& In(AdjustDialog& dialog, const char* name) {
    return *dialog.findChild<Control*>(name);
  }
  static void Press(AdjustDialog& dialog, const char* button) {
    QTest::mouseClick(&In(dialog, button), Qt::LeftButton);
    QCoreApplication::processEvents();
  }
  int Undos() {
    int count = 0;
    for (; Bench().History().CanUndo(); ++count) Bench().History().Undo();
    return count;
  }
};

TEST_F(AdjustDialogTest, AHeldButtonAndADragAreOneChangeEach) {
  Constant& gain = Const("KVP");
  const double before = gain.Value();
  AdjustDialog& dialog = Open("KVP");
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

}  // namespace
}  // namespace torvane
