#include "ui/panes/constants/constants_grid.h"

#include <QScrollBar>
#include <QTableWidget>

#include "core/constant.h"
#include "desktop.h"

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

}  // namespace
}  // namespace torvane
