#include "ui/desk/theme.h"

#include <QApplication>
#include <QPalette>
#include <QToolTip>

#include "ui/session/user_settings.h"

namespace torvane {

namespace {

const QString Key = QStringLiteral("theme");

struct Shade {
  QPalette::ColorRole Role;
  QRgb Light;
  QRgb Dark;
};

constexpr Shade Shades[] = {
    {QPalette::Window, 0xefefef, 0x2d3033},      {QPalette::WindowText, 0x1b1e21, 0xe4e6e8},
    {QPalette::Base, 0xffffff, 0x232629},        {QPalette::AlternateBase, 0xf5f6f7, 0x2b2e32},
    {QPalette::Text, 0x1b1e21, 0xe4e6e8},        {QPalette::PlaceholderText, 0x6b7177, 0x9aa0a6},
    {QPalette::Button, 0xefefef, 0x3a3e43},      {QPalette::ButtonText, 0x1b1e21, 0xe4e6e8},
    {QPalette::BrightText, 0xffffff, 0xffffff},  {QPalette::Light, 0xffffff, 0x555b61},
    {QPalette::Midlight, 0xf7f7f7, 0x45494e},    {QPalette::Mid, 0xb8bcc0, 0x26292c},
    {QPalette::Dark, 0x9c9fa2, 0x1a1c1e},        {QPalette::Shadow, 0x767a7d, 0x0c0d0e},
    {QPalette::Highlight, 0x308cc6, 0x2a74ad},   {QPalette::HighlightedText, 0xffffff, 0xffffff},
    {QPalette::Link, 0x0a5fb4, 0x6cb4ff},        {QPalette::LinkVisited, 0x6b3fa0, 0xb79cf0},
    {QPalette::ToolTipBase, 0xffffdc, 0x3a3e43}, {QPalette::ToolTipText, 0x1b1e21, 0xe4e6e8},
};

constexpr QPalette::ColorRole Texts[] = {QPalette::WindowText, QPalette::Text,
                                         QPalette::ButtonText};
constexpr QRgb DisabledText[] = {0x9a9fa4, 0x7d848b};  // light, dark

QPalette PaletteOf(bool dark) {
  QPalette palette;
  for (const Shade& shade : Shades) {
    palette.setColor(shade.Role, QColor::fromRgb(dark ? shade.Dark : shade.Light));
  }
  for (const QPalette::ColorRole role : Texts) {
    palette.setColor(QPalette::Disabled, role, QColor::fromRgb(DisabledText[dark ? 1 : 0]));
  }
  return palette;
}

}  // namespace

// A palette that sets nothing gives the application back to the desktop's.
void ApplyTheme(Theme theme) {
  QApplication::setPalette(theme == Theme::System ? QPalette() : PaletteOf(theme == Theme::Dark));
  const QPalette& now = QApplication::palette();
  QPalette tips = QToolTip::palette();
  for (const QPalette::ColorGroup group :
       {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    tips.setColor(group, QPalette::ToolTipBase, now.color(QPalette::Active, QPalette::ToolTipBase));
    tips.setColor(group, QPalette::ToolTipText, now.color(QPalette::Active, QPalette::ToolTipText));
  }
  QToolTip::setPalette(tips);
}

Theme RememberedTheme() {
  const int theme = UserSettings().value(Key).toInt();
  return theme == static_cast<int>(Theme::Light)  ? Theme::Light
         : theme == static_cast<int>(Theme::Dark) ? Theme::Dark
                                                  : Theme::System;
}

void RememberTheme(Theme theme) {
  UserSettings().setValue(Key, static_cast<int>(theme));
}

}  // namespace torvane
