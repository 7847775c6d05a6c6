#include <QComboBox>
#include <QLabel>
#include <QTableWidget>
#include <QWheelEvent>

#include "core/constant.h"
#include "desktop.h"
#include "library/wave.h"
#include "ui/panes/constants/constants_grid.h"

namespace torvane {
namespace {

class InputTest : public test::Desktop {
 protected:
  void SetUp() override { Panel->activateWindow(); }
  QTableWidget& Grid() { return Find<QTableWidget>("SGConsts"); }
  QWidget* Focus() { return QApplication::focusWidget(); }
  void Press(int key) { QTest::keyClick(Focus(), static_cast<Qt::Key>(key), Qt::ControlModifier); }
  const WaveSettings& Wave() {
    return static_cast<ZelWave*>(Bench().Instruments(InstrumentKind::WaveGenerator).front())
        ->Settings();
  }
  /// What the notice on display says.
  QString Notice() {
    const auto* notice = Panel->findChild<QLabel*>("LNotice");
    return notice && notice->isVisible() ? notice->text() : QString();
  }
  void ClickValue(int row) {
    const QRect cell = Grid().visualItemRect(Grid().item(row, ConstantsGrid::ValueColumn));
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, cell.center());
  }
};

// A second click on a selected value must not make the keys that follow at once search for a row.
TEST_F(InputTest, EveryKeyTypedOnASelectedValueIsPartOfTheNewValue) {
  ClickValue(1);
  ClickValue(1);
  for (const char key : {'1', '.', '4', '5'}) QTest::keyClick(Focus(), key);
  QTest::keyClick(Focus(), Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Bench().ConstAt(1)->Value() == 1.45; }));
  EXPECT_EQ(Grid().currentRow(), 1);
}

TEST_F(InputTest, AKeyOnAListConstantOpensItsChoices) {
  ChooseModel("4-1 Digital PI Controller");
  const auto& constants = Bench().Constants();
  const auto list = std::find_if(constants.begin(), constants.end(),
                                 [](const Constant* constant) { return constant->IsList(); });
  for (const Qt::Key key : {Qt::Key_F2, Qt::Key_T}) {
    Grid().setFocus();
    Grid().setCurrentCell(static_cast<int>(list - constants.begin()), ConstantsGrid::ValueColumn);
    QTest::keyClick(&Grid(), key);
    EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }));
    QApplication::activePopupWidget()->hide();
    Grid().setFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return Grid().findChild<QComboBox*>() == nullptr; }));
  }
}

TEST_F(InputTest, UndoAndRunWorkFromAnEditAndLeaveItTheFocus) {
  const double before = Const("KVP").Value();
  Type("EAmplitude", "3");
  QWidget* edit = Focus();
  Const("KVP").Set(2.0);
  Press(Qt::Key_Z);
  EXPECT_EQ(Const("KVP").Value(), before);
  Press(Qt::Key_Y);
  EXPECT_EQ(Const("KVP").Value(), 2.0);
  Press(Qt::Key_R);
  EXPECT_TRUE(Panel->Running());
  EXPECT_EQ(Focus(), edit);
  Press(Qt::Key_Period);
  EXPECT_FALSE(Panel->Running());
  EXPECT_EQ(Focus(), edit);
  // The same in an open cell whose text is as it was.
  Grid().setFocus();
  QTest::keyClick(&Grid(), Qt::Key_F2);
  ASSERT_NE(qobject_cast<QLineEdit*>(Focus()), nullptr);
  Press(Qt::Key_Z);
  EXPECT_EQ(Const("KVP").Value(), before);
}

TEST_F(InputTest, TypedTextIsUndoneByItselfAndCommittedByAShortcut) {
  Const("KVP").Set(2.0);
  const auto typeAndUndo = [this] {
    QTest::keyClicks(Focus(), "7");
    Press(Qt::Key_Z);
    EXPECT_EQ(Const("KVP").Value(), 2.0);
    QTest::keyClicks(Focus(), "8");
    Press(Qt::Key_Period);
  };
  Type("EAmplitude", "6");
  typeAndUndo();
  EXPECT_EQ(Wave().Amplitude, 8.0);
  Grid().setFocus();
  Grid().setCurrentCell(1, ConstantsGrid::ValueColumn);
  typeAndUndo();
  EXPECT_EQ(Bench().ConstAt(1)->Value(), 8.0);
}

TEST_F(InputTest, TheWheelTurnsAListOnlyInTheFocus) {
  for (const char* name : {"CmBWaveform", "CmBVertChan", "CmBTrigSource", "CmBHorizChan"}) {
    QComboBox& list = Find<QComboBox>(name);
    for (const bool focused : {false, true}) {
      Grid().setFocus();
      if (focused) list.setFocus();
      list.setCurrentIndex(1);
      const QPointF centre = list.rect().center();
      QWheelEvent wheel(centre, list.mapToGlobal(centre), {}, {0, -120}, {}, {}, {}, false);
      QApplication::sendEvent(&list, &wheel);
      EXPECT_EQ(list.currentIndex() != 1, focused) << name;
    }
  }
}

TEST_F(InputTest, AnEntryHeldToItsLimitSaysSo) {
  Type("EOffset", "1.5");
  EXPECT_EQ(Notice(), "");
  Type("EDutyCycle", "130");
  EXPECT_EQ(Notice(), "limited to 100");
  Type("EDutyCycle", "130");  // at the limit already
  EXPECT_EQ(Notice(), "limited to 100");
  Type("EDutyCycle", "95");
  Click("SBDutyCycleDown");
  EXPECT_EQ(Wave().DutyCycle, 85.0);
  Type("EDutyCycle", "4");
  Click("SBDutyCycleDown");
  EXPECT_EQ(Notice(), "limited to 0");
  Type("EFreqHz", "2.5k");
  EXPECT_EQ(Wave().FreqHz, 2500.0);
  Type("EFreqHz", "-5");
  EXPECT_EQ(Notice(), "stored without its sign");
  Type("EVertScale", "1e200");
  EXPECT_EQ(Notice(), "limited to 1e+100");
  Grid().setFocus();
  Grid().setCurrentCell(0, ConstantsGrid::ValueColumn);
  QTest::keyClicks(&Grid(), "-");
  QTest::keyClicks(Focus(), "3");
  QTest::keyClick(Focus(), Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Notice() == "limited to 0"; }));
  Type("EOffset", "0");
  Click("BOffsetSign");
  EXPECT_EQ(Text("EOffset"), "0");
}

}  // namespace
}  // namespace torvane
