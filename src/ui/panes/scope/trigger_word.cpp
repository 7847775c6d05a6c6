#include "ui/panes/scope/trigger_word.h"

#include <QEvent>
#include <QFontMetrics>
#include <algorithm>
#include <array>
#include <cmath>

namespace torvane {

namespace {

struct Appearance {
  const char* Text;
  QRgb OnLight;
  QRgb OnDark;
};

// By Word; calm, and readable on the window's ground.
constexpr std::array<Appearance, 5> States = {{{"Stopped", 0x5f666d, 0xa7aeb5},
                                               {"Waiting", 0x8a5a00, 0xe0b45c},
                                               {"Auto", 0x2b5f93, 0x86b8e6},
                                               {"Cont", 0x2b5f93, 0x86b8e6},
                                               {"Triggered", 0x2c6b34, 0x86c98e}}};

}  // namespace

TriggerWord::TriggerWord(QLabel& label, const ZelScope& scope)
    : QObject(&label), label_(label), scope_(scope) {
  int width = 0;
  for (const Appearance& state : States) {
    width = std::max(width, label.fontMetrics().horizontalAdvance(QLatin1String(state.Text)));
  }
  label.setMaximumWidth(width);
  label.installEventFilter(this);
}

bool TriggerWord::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) Write();
  return QObject::eventFilter(watched, event);
}

// The sweep of an event goes on being that event's until its screen is full. Where sweeps without
// events come in between, what is seen is no event's.
TriggerWord::Word TriggerWord::Present() const {
  const double now = scope_.TimeChannel().Signal().Value;
  if (now == time_ || scope_.State() == ZelScope::Capture::Stopped) return Word::Stopped;
  const ZelTrigger& trigger = scope_.Trigger();
  if (trigger.Mode() == SweepMode::Cont) return Word::Cont;
  const bool runsFree = scope_.LastSweepAutomatic() || scope_.AutomaticSweeps() != automaticSweeps_;
  if (trigger.Mode() == SweepMode::Auto && runsFree) return Word::Auto;
  const double screen =
      std::abs(scope_.TimeChannel().Horizontal().Scale) * ZelScope::HorizontalDivisions;
  const bool underWay = scope_.State() == ZelScope::Capture::Filling && trigger.FireTime() > 0.0 &&
                        now - trigger.FireTime() <= screen;
  if (scope_.TriggerLit() || underWay) return Word::Triggered;
  return trigger.Mode() == SweepMode::Auto ? Word::Auto : Word::Waiting;
}

void TriggerWord::Show() {
  word_ = Present();
  automaticSweeps_ = scope_.AutomaticSweeps();
  time_ = scope_.TimeChannel().Signal().Value;
  Write();
}

void TriggerWord::Write() {
  const Appearance& state = States[static_cast<std::size_t>(word_)];
  const bool fits = label_.width() >= label_.maximumWidth();
  const QString text = fits ? QLatin1String(state.Text) : QLatin1String();
  if (label_.text() != text) label_.setText(text);
  const bool dark = label_.palette().color(QPalette::Window).lightness() < 128;
  const QColor colour = QColor::fromRgb(dark ? state.OnDark : state.OnLight);
  if (label_.palette().color(QPalette::WindowText) == colour) return;
  QPalette palette = label_.palette();
  palette.setColor(QPalette::WindowText, colour);
  label_.setPalette(palette);
}

}  // namespace torvane
