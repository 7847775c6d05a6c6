#include "ui/panes/meter_window.h"

#include "desktop.h"
#include "ui/desk/workspace.h"

namespace torvane {
namespace {

class MeterWindowTest : public test::Desktop {
 protected:
  const std::vector<Instrument*>& Meters() { return Bench().Instruments(InstrumentKind::Meter); }
  ZelMeter& Meter() { return First<ZelMeter>(InstrumentKind::Meter); }
  QList<MeterWindow*> Windows() { return Panel->findChildren<MeterWindow*>(); }
};

TEST_F(MeterWindowTest, TheMenuAddsFifteenMetersAndEachLeavesWithItsWindow) {
  for (int i = 0; i < ZelMeter::MaxMeters; ++i) Trigger("MIAddMeter");
  Play("click MIAddMeter -> report Error: Too many meters; saved Meter,Meter from Main Menu*,DC,1");
  ASSERT_EQ(Windows().size(), ZelMeter::MaxMeters);
  Play("-> panel.windowTitle=* 2-1 PI+ Controller - Torvane--Melkorin, 2nd Edition");
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
  for (MeterWindow* window : Windows()) window->parentWidget()->close();
  EXPECT_TRUE(WaitFor([&] { return Windows().isEmpty(); }));
  EXPECT_TRUE(Meters().empty());
  Play("-> undo=; panel.windowTitle=2-1 PI+ Controller - Torvane--Melkorin, 2nd Edition");
}

}  // namespace
}  // namespace torvane
