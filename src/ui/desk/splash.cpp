#include "ui/desk/splash.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QIcon>
#include <QPainter>

namespace torvane {

namespace {

constexpr QSize SplashSize(440, 200);

QPixmap SplashPicture() {
  const double ratio = qApp->devicePixelRatio();
  QPixmap picture((QSizeF(SplashSize) * ratio).toSize());
  picture.setDevicePixelRatio(ratio);
  picture.fill(QColor(0x173a5c));
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  QIcon(QStringLiteral(":/icons/torvane.svg")).paint(&painter, QRect(28, 46, 96, 96));
  QFont font = painter.font();
  font.setPixelSize(34);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(Qt::white);
  painter.drawText(QPoint(150, 88), QStringLiteral("Torvane"));
  font.setPixelSize(15);
  font.setBold(false);
  painter.setFont(font);
  painter.setPen(QColor(0xcfe0ef));
  painter.drawText(QPoint(152, 116), QStringLiteral("Melkorin, 2nd Edition"));
  font.setPixelSize(12);
  painter.setFont(font);
  painter.setPen(QColor(0x9fbbd4));
  painter.drawText(QPoint(152, 144), QStringLiteral("Simulator of feedback control systems"));
  painter.drawText(QPoint(152, 162),
                   QStringLiteral("Version %1").arg(QCoreApplication::applicationVersion()));
  return picture;
}

}  // namespace

SplashScreen::SplashScreen() : QSplashScreen(SplashPicture()) {
  setObjectName(QStringLiteral("SplashF"));
  // Keys belong to the main window from the start.
  setAttribute(Qt::WA_ShowWithoutActivating);
  setWindowFlag(Qt::WindowDoesNotAcceptFocus);
}

}  // namespace torvane
