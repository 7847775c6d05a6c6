#include "ui/panes/scope/trigger_controls.h"

#include <QSignalBlocker>
#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "ui/widgets/check.h"
#include "ui/widgets/edit_binding.h"
#include "ui_scope.h"

namespace torvane {

namespace {

std::int32_t LimitedCount(double count) {
  constexpr double most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(count, 1.0, most));
}

}  // namespace

TriggerControls::TriggerControls(Ui::ScopeWindow& ui, ZelScope& scope, QObject* parent)
    : QObject(parent), ui_(ui), scope_(scope) {
  BindNumbers();
  ConnectSwitches();
}

void TriggerControls::BindNumbers() {
  ZelTrigger& trigger = scope_.Trigger();
  edits_ = {
      BindNumber(
          *ui_.ETrigLevel, [&](double level) { trigger.SetLevel(level); },
          [&] { return trigger.Level(); }),
      BindNumber(
          *ui_.ETrigPosition, [&](double percent) { trigger.SetPosition(percent); },
          [&] { return trigger.Position(); }),
      BindNumber(
          *ui_.ETrigTInitDelay, [&](double seconds) { trigger.SetInitialDelayTime(seconds); },
          [&] { return trigger.InitialDelayTime(); }),
      BindNumber(
          *ui_.ETrigNumEvents,
          [&](double count) { trigger.SetNumberOfEvents(LimitedCount(count)); },
          [&] { return trigger.NumberOfEvents(); }),
      BindNumber(
          *ui_.ETrigTDelayAfter, [&](double seconds) { trigger.SetDelayAfterTime(seconds); },
          [&] { return trigger.DelayAfterTime(); }),
  };
}

void TriggerControls::ConnectSwitches() {
  ZelTrigger& trigger = scope_.Trigger();
  const auto toggled = [this](QAbstractButton* button, auto set) {
    connect(button, &QAbstractButton::toggled, this, set);
  };
  const auto chosen = [&](QAbstractButton* button, SweepMode mode) {
    toggled(button, [&trigger, mode](bool on) {
      if (on) trigger.SetMode(mode);
    });
  };
  chosen(ui_.RBTrigCont, SweepMode::Cont);
  chosen(ui_.RBTrigAuto, SweepMode::Auto);
  chosen(ui_.RBTrigNormal, SweepMode::Normal);
  // Also sent while Show checks the other one.
  toggled(ui_.RBTrigPos, [&](bool on) {
    if (on != trigger.PositiveSlope()) trigger.SetPositiveSlope(on);
  });
  toggled(ui_.CBTrigRoll, [&](bool on) { trigger.SetRoll(on); });
  toggled(ui_.CBTrigInitDelay, [&](bool on) { trigger.SetInitialDelay(on); });
  toggled(ui_.CBTrigCountEvents, [&](bool on) { trigger.SetCountEvents(on); });
  toggled(ui_.CBTrigDelayAfter, [&](bool on) { trigger.SetDelayAfter(on); });
  toggled(ui_.CBSingleShot, [this](bool on) { scope_.SetSingleShot(on); });
  toggled(ui_.CBStopModel, [this](bool on) { scope_.SetStopsModel(on); });
}

void TriggerControls::Show() {
  const ZelTrigger& trigger = scope_.Trigger();
  for (EditBinding* edit : edits_) edit->Show();
  const std::array modes = {ui_.RBTrigCont, ui_.RBTrigAuto, ui_.RBTrigNormal};
  Check(*modes[static_cast<std::size_t>(trigger.Mode())], true);
  Check(trigger.PositiveSlope() ? *ui_.RBTrigPos : *ui_.RBTrigNeg, true);
  Check(*ui_.CBTrigRoll, trigger.Roll());
  Check(*ui_.CBSingleShot, scope_.SingleShot());
  Check(*ui_.CBStopModel, scope_.StopsModel());
  const auto extra = [](QAbstractButton& check, bool on, QWidget& edit) {
    Check(check, on);
    edit.setEnabled(on);
  };
  extra(*ui_.CBTrigInitDelay, trigger.InitialDelay(), *ui_.ETrigTInitDelay);
  extra(*ui_.CBTrigCountEvents, trigger.CountEvents(), *ui_.ETrigNumEvents);
  extra(*ui_.CBTrigDelayAfter, trigger.DelayAfter(), *ui_.ETrigTDelayAfter);
}

}  // namespace torvane
