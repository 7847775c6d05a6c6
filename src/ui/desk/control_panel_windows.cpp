// How the program's window comes up where it was left, and how it ends.

#include <QCloseEvent>
#include <QCoreApplication>
#include <QScreen>
#include <algorithm>

#include "ui/desk/arrangement.h"
#include "ui/desk/control_panel.h"
#include "ui/desk/experiments_menu.h"
#include "ui/desk/file_commands.h"
#include "ui/desk/loop_commands.h"
#include "ui/desk/splash.h"
#include "ui/session/user_settings.h"
#include "ui_control_panel.h"

namespace torvane {

namespace {

constexpr int SplashMilliseconds = 4000;
constexpr QSize LargestStartSize(1680, 1050);
constexpr QSize RoomySize(1500, 880);  // a display smaller than this is used whole
const QString GeometryKey = QStringLiteral("windowGeometry");

}  // namespace

// The display may have become smaller since.
bool ControlPanel::RecallGeometry() {
  if (windows_ == Windows::AsBuilt ||
      !restoreGeometry(UserSettings().value(GeometryKey).toByteArray())) {
    return false;
  }
  const QRect room = screen()->availableGeometry();
  if (!isMaximized() && !isFullScreen() && !room.contains(frameGeometry())) {
    const QSize frame = frameGeometry().size() - size();
    resize(size().boundedTo(room.size() - frame));
    move(std::clamp(x(), room.left(),
                    std::max(room.right() + 1 - frameGeometry().width(), room.left())),
         std::clamp(y(), room.top(),
                    std::max(room.bottom() + 1 - frameGeometry().height(), room.top())));
  }
  return true;
}

void ControlPanel::ShowAtStart(bool withSplash) {
  const QSize available = screen()->availableSize();
  if (RecallGeometry()) {
    show();
  } else if (available.width() < RoomySize.width() || available.height() < RoomySize.height()) {
    showMaximized();
  } else {
    resize((available * 0.92).boundedTo(LargestStartSize));
    show();
  }
  if (!withSplash) return;
  auto* splash = new SplashScreen;
  splash->setAttribute(Qt::WA_DeleteOnClose);
  splash->show();
  splashTimer_.setObjectName(QStringLiteral("TSplash"));
  splashTimer_.setSingleShot(true);
  connect(&splashTimer_, &QTimer::timeout, splash, &QWidget::close);
  connect(ui_->SBRun, &QAbstractButton::toggled, splash, &QWidget::close);
  splashTimer_.start(SplashMilliseconds);
}

// The end of the program tells everybody that it is to end; by then that is nobody's question.
void ControlPanel::closeEvent(QCloseEvent* event) {
  if (!ending_ && !(session_.MayDiscard("close") && loops_->MayLeaveText())) {
    event->ignore();
    return;
  }
  if (!ending_) files_->KeepForNextStart();
  ending_ = true;
  Stop();
  RememberWindows();
  if (windows_ == Windows::AsLeft) UserSettings().setValue(GeometryKey, saveGeometry());
  event->accept();
  QCoreApplication::quit();
}

// Dialogs that are open, with message loops of their own, end too.
void ControlPanel::EndUnasked() {
  if (ending_ || !isVisible()) return;
  session_.LeaveForNextStart();
  ending_ = true;
  close();
  QCoreApplication::exit();
}

void ControlPanel::RememberWindows() {
  if (windows_ == Windows::AsLeft && !experiments_->IsActive())
    arrangement::Remember(*ui_->InstrumentArea);
}

}  // namespace torvane
