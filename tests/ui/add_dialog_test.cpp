#include "ui/panes/scope/add_dialog.h"

#include <QAbstractButton>
#include <QListWidget>
#include <QTimer>
#include <algorithm>

#include "desktop.h"
#include "instruments/scope/scope.h"

namespace torvane {
namespace {

// Channels a to d of which b shows; two share the name d. Keeps the orders that the items are
// given.
class AddDialogTest : public testing::Test {
 protected:
  std::vector<ShownItem> Items() {
    std::vector<ShownItem> items;
    for (const std::string name : {"a", "b", "c", "d", "d"}) {
      items.push_back({name, name == "b",
                       [this, name](bool show) { Orders += (show ? "+" : "-") + name + " "; }});
    }
    return items;
  }
  QListWidget& List(const char* name) { return *Dialog.findChild<QListWidget*>(name); }
  void Press(const char* name) { Dialog.findChild<QAbstractButton*>(name)->click(); }
  QString Names(const char* name) {
    QString names;
    for (int row = 0; row < List(name).count(); ++row) names += List(name).item(row)->text();
    return names;
  }

  AddDialogTest() {
    QObject::connect(&Dialog, &QDialog::accepted, [this] { Dialog.Apply(); });
  }

  std::string Orders;
  AddDialog Dialog{Items(), nullptr};
};

TEST_F(AddDialogTest, MovesNamesAndTellsTheItemsOnOkayOnly) {
  EXPECT_EQ(Names("LBShowing") + "|" + Names("LBNotShowing"), "b|acdd");
  List("LBNotShowing").item(0)->setSelected(true);
  List("LBNotShowing").item(2)->setSelected(true);
  Press("BShowSelected");
  EXPECT_EQ(Names("LBShowing") + "|" + Names("LBNotShowing"), "bad|cd");
  List("LBShowing").item(0)->setSelected(true);
  emit List("LBShowing").itemDoubleClicked(List("LBShowing").item(0));
  EXPECT_EQ(Names("LBShowing") + "|" + Names("LBNotShowing"), "ad|cdb");
  EXPECT_EQ(Orders, "");
  Press("BOkay");
  // Both items called d are in both lists: each is shown, then hidden.
  EXPECT_EQ(Orders, "+a -b -c +d -d +d -d ");
}

TEST_F(AddDialogTest, MovesAllAndCancels) {
  Press("BSelectAll");
  EXPECT_EQ(Names("LBShowing") + "|" + Names("LBNotShowing"), "bacdd|");
  Press("BUnshowAll");
  EXPECT_EQ(Names("LBShowing") + "|" + Names("LBNotShowing"), "|bacdd");
  Press("BCancel");
  EXPECT_EQ(Orders, "");
}

class ChooseChannelsTest : public test::Desktop {};

TEST_F(ChooseChannelsTest, TheScopeShowsWhatWasChosen) {
  auto& scope = static_cast<ZelScope&>(*Bench().Instruments(InstrumentKind::Scope).front());
  for (const char* button : {"BVertAdd", "BVertRemove"}) {
    const bool showAll = std::string(button) == "BVertAdd";
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, qApp, [&] {
      if (!QApplication::activeModalWidget()) return;
      answer.stop();
      Click(showAll ? "BSelectAll" : "BUnshowAll");
      Click("BOkay");
    });
    answer.start(1);
    Click(button);
    const auto shown = [&] {
      return std::ranges::count_if(scope.Channels(), [](auto& one) { return one->Colour() >= 0; });
    };
    // A ninth trace is refused.
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == (showAll ? 8 : 0); })) << shown();
  }
  Reports.Take();
}

}  // namespace
}  // namespace torvane
