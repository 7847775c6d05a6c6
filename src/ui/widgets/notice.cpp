#include "ui/widgets/notice.h"

#include <QAccessible>
#include <QLabel>
#include <QTimer>
#include <QToolTip>
#include <algorithm>

namespace torvane {

namespace {

constexpr int NoticeMilliseconds = 3000;
constexpr int NoticeGap = 3;  // between control and notice, pixels

// One label a window, kept for its next notice.
class Notice : public QLabel {
 public:
  explicit Notice(QWidget& window) : QLabel(&window) {
    setObjectName(QStringLiteral("LNotice"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setAutoFillBackground(true);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setMargin(4);
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &QWidget::hide);
  }

  void Say(const QRect& area, const QString& text) {
    setPalette(QToolTip::palette());
    setText(text);
    setAccessibleName(text);
    adjustSize();
    const QRect room = parentWidget()->rect();
    QPoint place(area.left(), area.bottom() + NoticeGap);
    if (place.y() + height() > room.bottom()) place.setY(area.top() - NoticeGap - height());
    place.setX(std::max(0, std::min(place.x(), room.right() - width())));
    move(place);
    raise();
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    timer_.start(NoticeMilliseconds);
  }

 private:
  QTimer timer_;
};

}  // namespace

void ShowNotice(QWidget& control, const QString& text) {
  ShowNotice(control, control.rect(), text);
}

void ShowNotice(QWidget& control, const QRect& area, const QString& text) {
  QWidget& window = *control.window();
  auto* notice = window.findChild<QWidget*>(QStringLiteral("LNotice"), Qt::FindDirectChildrenOnly);
  if (!notice) notice = new Notice(window);
  const QRect place(control.mapTo(&window, area.topLeft()), area.size());
  static_cast<Notice*>(notice)->Say(place, text);
}

}  // namespace torvane
