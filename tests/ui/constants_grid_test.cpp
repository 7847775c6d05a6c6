#include "ui/panes/constants/constants_grid.h"

#include <QScrollBar>
#include <QTableWidget>

#include "core/constant.h"
#include "desktop.h"
#include "ui/panes/constants/adjust_dialog.h"
#include "ui/session/message_boxes.h"

namespace torvane {
namespace {

class ConstantsGridTest : public test::Desktop {
 protected:
  ConstantsGridTest() { ChooseModel("4-1 Digital PI Controller"); }
  QTableWidget& Grid() { return Find<QTableWidget>("SGConsts"); }
};

TEST_F(ConstantsGridTest, ChoicesAreOfferedAsAList) {
  Play("click SGConsts[Feedback]; key focus F2 ->");
  QComboBox* editor = Grid().findChild<QComboBox*>();
  ASSERT_NE(editor, nullptr);
  ASSERT_EQ(editor->count(), 2);
  editor->setCurrentIndex(1);
  emit editor->activated(1);
  Play("-> SGConsts[Feedback]=Encoder; saved Constant,Feedback,Encoder");
}

TEST_F(ConstantsGridTest, AKeyOnAListConstantOpensItsChoices) {
  for (const char* key : {"F2", "T"}) {
    Play(std::string("click SGConsts[Feedback]; key SGConsts ") + key + " ->");
    EXPECT_TRUE(WaitFor([] { return QApplication::activePopupWidget() != nullptr; }));
    QApplication::activePopupWidget()->hide();
    Grid().setFocus();
    EXPECT_TRUE(WaitFor([&] { return Grid().findChild<QComboBox*>() == nullptr; }));
  }
}

// What comes before the box has been shown, and answered, finds the editor closed.
TEST_F(ConstantsGridTest, InputAfterATextThatIsNoNumberFindsTheEditorClosed) {
  static QStringList warnings;
  const MessageBoxes boxes;
  const auto handler =
      qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
        if (!text.startsWith("This plugin")) warnings << text;
      });
  for (const char* more : {"key focus Return", "key focus Return; key focus Return",
                           "click SGConsts[KVI]", "click SBRun", "key focus Down; keys focus 5",
                           "key focus F2; keys focus x; key focus Return; click SGConsts[KVP]"}) {
    SCOPED_TRACE(more);
    Play(std::string("box OK; click SGConsts[KVP]; keys focus abc; key focus Return; ") + more +
         " -> box=Message Box|Cannot convert \"abc\" to a Number|; SGConsts[KVP]=0.72");
    // The second report's box must not be left to whoever comes after this test.
    if (std::string_view(more).find("keys focus x") != std::string_view::npos) {
      Play("box OK -> box=Message Box|Cannot convert \"x\" to a Number|");
    }
    Play("click SBStop -> SBStop on");
    if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) box->accept();
    for (auto* dialog : Panel->findChildren<AdjustDialog*>()) dialog->hide();
    Panel->activateWindow();
    ASSERT_TRUE(WaitFor([&] { return Panel->isActiveWindow(); }));
  }
  qInstallMessageHandler(handler);
  EXPECT_EQ(warnings, QStringList());
}

TEST_F(ConstantsGridTest, EnterCountsAtOnceInTheTablesOfASearchToo) {
  Trigger("MITune");
  for (const auto& [name, row] : {std::pair("SGVary", 0), std::pair("SGRequire", 6)}) {
    auto& table = Find<QTableWidget>(name);
    QTableWidgetItem* const cell = table.item(row, 2);
    table.editItem(cell);
    auto* const editor = table.findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr) << name;
    editor->setText("60");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(cell->text(), "60") << name;
    EXPECT_TRUE(editor->isHidden()) << name;
  }
}

}  // namespace
}  // namespace torvane
