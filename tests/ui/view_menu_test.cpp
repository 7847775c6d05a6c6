#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMdiArea>

#include "desktop.h"
#include "ui/desk/theme.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

class ViewMenuTest : public test::Desktop {
 protected:
  ~ViewMenuTest() override { ApplyTheme(Theme::System); }
  ScopePaintBox& Screen() { return Find<ScopePaintBox>("PBScreen"); }
  QImage Picture() { return Screen().grab().toImage(); }
  // Of the screen, between the division lines.
  QColor Ground() {
    return Picture().pixelColor(Screen().Painter().Plate().topLeft() + QPoint(9, 9));
  }
};

// The application's palette reaches windows by events of the running message loop.
TEST_F(ViewMenuTest, TheThemeReachesScreenListsAndWorkspaceAtOnce) {
  const auto workspace = [&] {
    return Find<QMdiArea>("InstrumentArea").background().color().lightness();
  };
  const int before = workspace();
  Trigger("MIThemeDark");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Ground() == ScopeColours::Dark().Plate; }, 30000));
  EXPECT_EQ(Find<QComboBox>("CmBVertChan").currentText(), "vC (Wht)");
  EXPECT_LT(workspace(), before);
  Trigger("MIThemeLight");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Ground() == ScopeColours::Light().Plate; }, 30000));
  EXPECT_EQ(Find<QComboBox>("CmBVertChan").currentText(), "vC (Blk)");
}

TEST_F(ViewMenuTest, PatternsAndColoursOfTracesAreChosenLive) {
  const QImage standard = Picture();
  Trigger("MIColoursApart");
  const QImage apart = Picture();
  EXPECT_NE(apart, standard);
  Trigger("MILinePatterns");
  EXPECT_NE(Picture(), apart);
  // Another model's windows have them too.
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Screen().Colours(), ScopeColours::Light(TraceColours::Apart));
}

TEST_F(ViewMenuTest, AWordBesideTheLampSaysWhatTheTriggerDoes) {
  auto& scope = static_cast<ZelScope&>(*Bench().Instruments(InstrumentKind::Scope).front());
  const auto becomes = [&](const char* word) {
    return QTest::qWaitFor([&, word] { return Find<QLabel>("LTrigState").text() == word; }, 30000);
  };
  EXPECT_EQ(Find<QLabel>("LTrigState").text(), "Stopped");
  Click("SBRun");
  EXPECT_TRUE(becomes("Triggered"));
  scope.Trigger().SetLevel(1e6);
  EXPECT_TRUE(becomes("Auto"));
  scope.Trigger().SetMode(SweepMode::Normal);
  EXPECT_TRUE(becomes("Waiting"));
  scope.Trigger().SetMode(SweepMode::Cont);
  EXPECT_TRUE(becomes("Cont"));
  Click("SBStop");
  EXPECT_TRUE(becomes("Stopped"));
}

}  // namespace
}  // namespace torvane
