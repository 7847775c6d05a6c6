#include "ui/panes/constants/constants_grid.h"

#include <QComboBox>
#include <QLineEdit>
#include <QWheelEvent>

#include "core/constant.h"
#include "desktop.h"
#include "ui/panes/constants/adjust_dialog.h"

namespace torvane {
namespace {

using test::Messages;

class ConstantsGridTest : public test::Desktop {
 protected:
  QTableWidget& Grid() { return Find<QTableWidget>("SGConsts"); }
  int Row(const QString& name) {
    const auto items = Grid().findItems(name, Qt::MatchExactly);
    return items.isEmpty() ? -1 : items.front()->row();
  }
  QString Value(const char* name) {
    return Grid().item(Row(name), ConstantsGrid::ValueColumn)->text();
  }
  // As a user does: chooses the cell, types, presses Enter.
  void Enter(const char* name, const char* text) {
    Grid().setFocus();
    Grid().setCurrentCell(Row(name), ConstantsGrid::ValueColumn);
    QTest::keyClick(&Grid(), Qt::Key_F2);
    QLineEdit* editor = Grid().findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QString::fromLatin1(text));
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::qWait(1);
  }
};

TEST_F(ConstantsGridTest, ListsNameValueAndUnit) {
  ASSERT_EQ(Grid().rowCount(), static_cast<int>(Bench().Constants().size()));
  const int row = Row("TSample");
  ASSERT_GE(row, 0);
  EXPECT_EQ(Value("TSample").toDouble(), Const("TSample").Value());
  EXPECT_EQ(Grid().item(row, ConstantsGrid::UnitColumn)->text(),
            QString::fromStdString(Const("TSample").Unit()));
}

TEST_F(ConstantsGridTest, AClickAnywhereInARowChoosesItsValue) {
  const int row = Row("TSample");
  for (int column : {ConstantsGrid::NameColumn, ConstantsGrid::UnitColumn}) {
    Grid().setCurrentCell(0, ConstantsGrid::ValueColumn);
    const QRect cell = Grid().visualItemRect(Grid().item(row, column));
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(Grid().currentRow(), row);
    EXPECT_EQ(Grid().currentColumn(), ConstantsGrid::ValueColumn);
  }
}

TEST_F(ConstantsGridTest, EditsReachTheConstantWhileTheModelRuns) {
  Click("SBRun");
  Enter("KVP", "0.5");
  EXPECT_EQ(Const("KVP").Value(), 0.5);
  EXPECT_EQ(Panel->findChild<TZelAdjustF*>(), nullptr);
  EXPECT_TRUE(Panel->Running());
  EXPECT_EQ(Find<QAction>("MIUndo").text(), "Undo KVP = 0.5");
  Trigger("MIUndo");
  EXPECT_EQ(Value("KVP").toDouble(), Const("KVP").Default());
}

TEST_F(ConstantsGridTest, ShowsTheLimitedAndKeepsTheRefused) {
  const double upper = Const("KVP").Upper();
  Enter("KVP", "1e300");
  EXPECT_EQ(Const("KVP").Value(), upper);
  EXPECT_EQ(Value("KVP").toDouble(), upper);
  Enter("KVP", "big");
  EXPECT_EQ(Reports.Take(), Messages{"Message Box: Cannot convert \"big\" to a Number"});
  EXPECT_EQ(Value("KVP").toDouble(), upper);
}

TEST_F(ConstantsGridTest, AnUntouchedCellKeepsTheDigitsItDoesNotShow) {
  Const("KVP").Set(0.123456789);
  EXPECT_EQ(Value("KVP"), "0.12346");
  Enter("KVP", "0.12346");
  EXPECT_EQ(Const("KVP").Value(), 0.123456789);
}

TEST_F(ConstantsGridTest, TheWheelTurnsTheSelectedValueAsOneChange) {
  const auto turn = [this](const char* name, int angle, Qt::KeyboardModifiers keys) {
    const QTableWidgetItem* item = Grid().item(Row(name), ConstantsGrid::ValueColumn);
    const QPointF place = Grid().visualItemRect(item).center();
    QWheelEvent wheel(place, Grid().viewport()->mapToGlobal(place), {}, {0, angle}, {}, keys, {},
                      false);
    QApplication::sendEvent(Grid().viewport(), &wheel);
  };
  const double before = Const("KVI").Value();
  Const("KVP").Set(2.0);
  Grid().setCurrentCell(Row("KVP"), ConstantsGrid::ValueColumn);
  turn("KVI", 120, {});
  EXPECT_EQ(Const("KVI").Value(), before);
  turn("KVP", 240, {});
  turn("KVP", 60, {});
  EXPECT_EQ(Const("KVP").Value(), 3.0);
  turn("KVP", 60, Qt::ShiftModifier);
  EXPECT_EQ(Const("KVP").Value(), 3.1);
  turn("KVP", -120, {});
  EXPECT_EQ(Const("KVP").Value(), 3.0);
  Bench().History().Undo();
  EXPECT_EQ(Const("KVP").Value(), 2.0);
}

TEST_F(ConstantsGridTest, ADragTurnsTheSelectedValueAsOneChange) {
  const auto drag = [this](const char* name, int up, Qt::KeyboardModifiers keys,
                           bool released = true) {
    QWidget& view = *Grid().viewport();
    const QTableWidgetItem* item = Grid().item(Row(name), ConstantsGrid::ValueColumn);
    const QPoint from = Grid().visualItemRect(item).center();
    const auto send = [&](QEvent::Type type, const QPoint& at, Qt::MouseButton button,
                          Qt::MouseButton held = Qt::LeftButton) {
      QMouseEvent mouse(type, at, view.mapToGlobal(at), button, held, keys);
      QApplication::sendEvent(&view, &mouse);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton);
    for (const int part : {1, 2, 3}) {
      send(QEvent::MouseMove, from - QPoint(0, up * part / 3), Qt::NoButton);
    }
    if (released) {
      send(QEvent::MouseButtonRelease, from - QPoint(0, up), Qt::LeftButton, Qt::NoButton);
    } else {
      send(QEvent::MouseMove, from - QPoint(0, 3 * up), Qt::NoButton, Qt::NoButton);
    }
  };
  const double before = Const("KVI").Value();
  Const("KVP").Set(2.0);
  Grid().setCurrentCell(Row("KVP"), ConstantsGrid::ValueColumn);
  drag("KVI", 40, {});
  EXPECT_EQ(Const("KVI").Value(), before);
  Grid().setCurrentCell(Row("KVP"), ConstantsGrid::ValueColumn);
  Click("SBRun");
  drag("KVP", 6, {});  // no more than an unsteady hand
  EXPECT_EQ(Const("KVP").Value(), 2.0);
  drag("KVP", 20, {}, false);  // a box that opens takes the release
  EXPECT_EQ(Const("KVP").Value(), 3.0);
  drag("KVP", -10, Qt::ShiftModifier);
  EXPECT_EQ(Const("KVP").Value(), 2.88);
  EXPECT_EQ(Grid().currentRow(), Row("KVP"));
  Bench().History().Undo();
  EXPECT_EQ(Const("KVP").Value(), 3.0);
  Bench().History().Undo();
  EXPECT_EQ(Const("KVP").Value(), 2.0);
}

TEST_F(ConstantsGridTest, ChoicesAreOfferedAsAList) {
  ChooseModel("4-1 Digital PI Controller");
  const Constant* list = nullptr;
  for (const Constant* constant : Bench().Constants()) {
    if (constant->IsList()) list = constant;
  }
  ASSERT_NE(list, nullptr);
  Grid().setCurrentCell(Row(QString::fromStdString(list->Name())), ConstantsGrid::ValueColumn);
  QTest::keyClick(&Grid(), Qt::Key_F2);
  QComboBox* editor = Grid().findChild<QComboBox*>();
  ASSERT_NE(editor, nullptr);
  ASSERT_EQ(editor->count(), static_cast<int>(list->Choices().size()));
  const int other = list->Choice() == 0 ? 1 : 0;
  editor->setCurrentIndex(other);
  emit editor->activated(other);
  EXPECT_EQ(list->Choice(), other);
  EXPECT_EQ(Value(list->Name().c_str()), QString::fromStdString(list->DisplayText()));
}

}  // namespace
}  // namespace torvane
