#include "ui/desk/view_menu.h"

#include <QActionGroup>
#include <QMenu>

#include "ui/session/user_settings.h"

namespace torvane {

namespace {

struct ThemeEntry {
  Theme Is;
  const char* Action;
  const char* Text;
};
constexpr ThemeEntry Themes[] = {{Theme::System, "MIThemeSystem", "Theme of the &System"},
                                 {Theme::Light, "MIThemeLight", "&Light"},
                                 {Theme::Dark, "MIThemeDark", "&Dark"}};

}  // namespace

ViewMenu::ViewMenu(QMenu& menu, Memory memory) : QObject(&menu), memory_(memory) {
  menu.setToolTipsVisible(true);
  AddThemes(menu);
  menu.addSeparator();
  apart_ = AddSwitch(menu, "MIColoursApart", QStringLiteral("Traces for the &Colour-Blind"),
                     QStringLiteral("Trace colours that stay apart for every kind of colour "
                                    "vision; those on a dark ground always do"));
  patterns_ = AddSwitch(menu, "MILinePatterns", QStringLiteral("Li&ne Patterns"),
                        QStringLiteral("Each trace has dashes of its own"));
}

void ViewMenu::AddThemes(QMenu& menu) {
  auto* group = new QActionGroup(this);
  const Theme chosen = memory_ == Memory::Kept ? RememberedTheme() : Theme::System;
  for (const ThemeEntry& entry : Themes) {
    QAction* action = menu.addAction(QLatin1String(entry.Text));
    action->setObjectName(QLatin1String(entry.Action));
    action->setCheckable(true);
    action->setChecked(entry.Is == chosen);
    group->addAction(action);
    connect(action, &QAction::triggered, this, [this, &entry] {
      if (memory_ == Memory::Kept) RememberTheme(entry.Is);
      ApplyTheme(entry.Is);
    });
  }
}

QAction* ViewMenu::AddSwitch(QMenu& menu, const char* name, const QString& text,
                             const QString& tip) {
  QAction* action = menu.addAction(text);
  const QString key = QLatin1String(name);
  action->setObjectName(key);
  action->setCheckable(true);
  const bool kept = memory_ == Memory::Kept;
  action->setChecked(kept && UserSettings().value(key).toBool());
  action->setToolTip(tip);
  connect(action, &QAction::toggled, this, [this, key, kept](bool on) {
    if (kept) UserSettings().setValue(key, on);
    emit LookChanged();
  });
  return action;
}

TraceLook ViewMenu::Look() const {
  return {apart_->isChecked() ? TraceColours::Apart : TraceColours::Standard,
          patterns_->isChecked()};
}

}  // namespace torvane
