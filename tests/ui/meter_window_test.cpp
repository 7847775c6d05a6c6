#include "ui/panes/meter_window.h"

#include <QMenu>
#include <QTemporaryDir>

#include "desktop.h"
#include "ui/desk/workspace.h"

namespace torvane {
namespace {

class MeterWindowTest : public test::Desktop {
 protected:
  const std::vector<Instrument*>& Meters() { return Bench().Instruments(InstrumentKind::Meter); }
  ZelMeter& Meter() { return First<ZelMeter>(InstrumentKind::Meter); }
  QList<TZelMeterF*> Windows() { return Panel->findChildren<TZelMeterF*>(); }
};

TEST_F(MeterWindowTest, TheMenuAddsFifteenMetersAndEachLeavesWithItsWindow) {
  for (int i = 0; i < ZelMeter::MaxMeters; ++i) Trigger("MIAddMeter");
  Play("click MIAddMeter -> report Error: Too many meters; saved Meter,Meter from Main Menu*,DC,1");
  ASSERT_EQ(Windows().size(), ZelMeter::MaxMeters);
  Play("-> panel.windowTitle=* Torvane--Melkorin, 2nd Edition");
  // None of them leads another window off the workspace.
  auto& workspace = Find<Workspace>("InstrumentArea");
  workspace.Toggle(InstrumentKind::FftAnalyser);
  for (const InstrumentFrame* frame : workspace.Frames()) {
    if (!frame->IsShown()) continue;
    EXPECT_TRUE(workspace.rect().contains(frame->geometry())) << frame->windowTitle().toStdString();
  }
  // Those that are changed and closed leave file, bench and history.
  Meter().SetLpf(5.0);
  EXPECT_TRUE(Bench().History().CanUndo());
  for (TZelMeterF* window : Windows()) window->parentWidget()->close();
  EXPECT_TRUE(WaitFor([&] { return Windows().isEmpty(); }));
  EXPECT_TRUE(Meters().empty());
  Play("-> undo=; panel.windowTitle=Torvane--Melkorin, 2nd Edition");
}

TEST_F(MeterWindowTest, MetersOfAFileGetTheirWindows) {
  const QTemporaryDir folder;
  const QString file = folder.filePath("meters.tvf");
  Trigger("MIAddMeter");
  Meter().SetVariable("iC");
  Meter().SetShowSetup(true);
  Meter().Placement = {WindowState::Normal, 420, 300, 40, 360};
  ASSERT_TRUE(Panel->Work().Save(file));
  for (const char* model : {"2-1 PI+ Controller", "3-1 PI Controller"}) {
    ChooseModel(model);
    EXPECT_TRUE(Windows().isEmpty());
    ASSERT_TRUE(Panel->Work().Open(file));
    Reports.Take();
    ASSERT_EQ(Windows().size(), 1) << model;
    Play("-> PCSetup shown; TZelMeterF.windowTitle=iC");
    EXPECT_EQ(Windows().front()->parentWidget()->pos(), QPoint(300, 40));
  }
  // The Window menu hides it and the meter goes on.
  QMenu& menu = Find<QMenu>("MWindow");
  emit menu.aboutToShow();
  for (QAction* item : menu.actions()) {
    if (item->text() == "iC") item->trigger();
  }
  Play("-> TZelMeterF hidden");
  EXPECT_EQ(Meters().size(), 1U);
}

}  // namespace
}  // namespace torvane
