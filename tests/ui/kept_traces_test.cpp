#include <QAbstractButton>
#include <QTableWidget>
#include <QTemporaryFile>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "desktop.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

class KeptTracesWindowTest : public test::Desktop {
 protected:
  ScopePaintBox& Box() { return Find<ScopePaintBox>("PBScreen"); }
  ZelScope& Scope() {
    return static_cast<ZelScope&>(*Bench().Instruments(InstrumentKind::Scope).front());
  }
  QString Header(int column) {
    return Find<QTableWidget>("SGMath").horizontalHeaderItem(column)->text();
  }
};

TEST_F(KeptTracesWindowTest, OutliveConstantsAndFilesButNotTheModel) {
  const std::string file = ModelFileText(*Panel->Model());
  EXPECT_FALSE(Find<QAbstractButton>("BClearKept").isEnabled());
  Click("BKeep");
  EXPECT_EQ(Scope().Kept(), nullptr);
  Click("SBRun");
  EXPECT_TRUE(QTest::qWaitFor([this] { return Box().Screen().PointCount() > 100; }));
  Click("SBStop");
  Click("SBMath");
  Find<QAbstractButton>("BKeep").click();
  ASSERT_NE(Scope().Kept(), nullptr);
  const double until = Scope().Kept()->Time.back();
  EXPECT_EQ(Header(1), "vC");
  EXPECT_EQ(Header(2), "vC kept");
  Const("KVP").Set(2.0);
  QTemporaryFile saved;
  ASSERT_TRUE(saved.open());
  saved.write(QByteArray::fromStdString(file));
  saved.close();
  EXPECT_TRUE(Panel->Work().Open(saved.fileName()));
  ASSERT_NE(Scope().Kept(), nullptr);
  EXPECT_EQ(Scope().Kept()->Time.back(), until);
  Find<QAbstractButton>("BClearKept").click();
  EXPECT_EQ(Scope().Kept(), nullptr);
  EXPECT_EQ(Header(2), "vF");
  Trigger("MIUndo");
  EXPECT_TRUE(Find<QAbstractButton>("BClearKept").isEnabled());
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Scope().Kept(), nullptr);
}

}  // namespace
}  // namespace torvane
