#include "ui/desk/desk_style.h"

#include <QHeaderView>
#include <QPainter>
#include <QStyleOption>
#include <QWidget>

namespace torvane {

namespace {

constexpr double SwitchedOn = 0.45;  // share of the highlight in a button that is on
constexpr int Dark = 128;            // lightness of a ground below which it is dark

QColor Mixed(const QColor& a, const QColor& b, double share) {
  const auto mix = [&](int from, int to) { return qRound(from + share * (to - from)); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

template <typename Option>
Option WithColour(const Option& option, QPalette::ColorRole role, const QColor& colour) {
  Option changed = option;
  changed.palette.setColor(role, colour);
  return changed;
}

// The button's icon, all of it in one colour.
QIcon Painted(const QStyleOptionToolButton& button, const QColor& colour) {
  QPixmap icon = button.icon.pixmap(button.iconSize);
  QPainter painter(&icon);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(icon.rect(), colour);
  painter.end();
  return icon;
}

}  // namespace

int DeskStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* data) const {
  if (hint == SH_MenuBar_AltKeyNavigation) return 1;
  return QProxyStyle::styleHint(hint, option, widget, data);
}

void DeskStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const {
  const QPalette& palette = option->palette;
  const bool on = option->state.testFlag(State_On) && option->state.testFlag(State_Enabled);
  const QColor onColour =
      Mixed(palette.color(QPalette::Button), palette.color(QPalette::Highlight), SwitchedOn);
  if (element == PE_PanelButtonTool && on) {
    const QStyleOption changed = WithColour(*option, QPalette::Button, onColour);
    QProxyStyle::drawPrimitive(element, &changed, painter, widget);
    return;
  }
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  if (element == PE_PanelButtonCommand && on && button) {
    const QStyleOptionButton changed = WithColour(*button, QPalette::Button, onColour);
    QProxyStyle::drawPrimitive(element, &changed, painter, widget);
    return;
  }
  // Their frames are a darker shade of the ground.
  const bool indicator = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
  if (indicator && button && palette.color(QPalette::Window).lightness() < Dark) {
    const QStyleOptionButton changed =
        WithColour(*button, QPalette::Window, palette.color(QPalette::PlaceholderText));
    QProxyStyle::drawPrimitive(element, &changed, painter, widget);
    return;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void DeskStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
  const auto* header = qobject_cast<const QHeaderView*>(widget);
  const bool ground = element == CE_HeaderSection || element == CE_HeaderEmptyArea;
  if (ground && header && header->orientation() == Qt::Vertical) {
    painter->fillRect(option->rect, option->palette.base());
    return;
  }
  QProxyStyle::drawControl(element, option, painter, widget);
}

// The base style has black buttons on the title bar of a window that is not active; one that is
// active in the colour of the ground has bright ones. A title's shadow has the colour of texts, and
// on a dark ground would be a second title. A panel's buttons are black on any ground.
void DeskStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
  const auto* bar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
  const QColor ground = option->palette.color(QPalette::Window);
  if (control == CC_TitleBar && bar && ground.lightness() < Dark) {
    QStyleOptionTitleBar changed = WithColour(*bar, QPalette::Text, Qt::black);
    if (!(bar->titleBarState & State_Active)) {
      changed.palette.setColor(QPalette::Highlight, ground);
      changed.titleBarState |= State_Active;
    }
    QProxyStyle::drawComplexControl(control, &changed, painter, widget);
    return;
  }
  const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
  if (button && ground.lightness() < Dark && widget && widget->inherits("QDockWidgetTitleButton")) {
    QStyleOptionToolButton changed = *button;
    changed.icon = Painted(*button, option->palette.color(QPalette::WindowText));
    QProxyStyle::drawComplexControl(control, &changed, painter, widget);
    return;
  }
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

}  // namespace torvane
