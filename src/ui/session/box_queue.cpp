#include "ui/session/box_queue.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace torvane {

namespace {

constexpr int LookMilliseconds = 50;  // between two looks whether what is open has been closed

void CallWhenNothingIsOpen(QObject& context, std::function<void()> what, int milliseconds) {
  QTimer::singleShot(milliseconds, &context, [&context, what = std::move(what)] {
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget()) {
      CallWhenNothingIsOpen(context, what, LookMilliseconds);
    } else {
      what();
    }
  });
}

}  // namespace

void WhenNothingIsOpen(QObject& context, std::function<void()> what) {
  CallWhenNothingIsOpen(context, std::move(what), 0);
}

BoxQueue& BoxQueue::OfApplication() {
  const QString name = QStringLiteral("BoxQueue");
  if (auto* queue = qApp->findChild<BoxQueue*>(name, Qt::FindDirectChildrenOnly)) return *queue;
  auto* queue = new BoxQueue;
  queue->setObjectName(name);
  queue->setParent(qApp);
  return *queue;
}

void BoxQueue::Add(const QString& text, Make make) {
  const auto same = [&](const Entry& entry) { return entry.Text == text; };
  if (std::any_of(entries_.begin(), entries_.end(), same)) return;
  entries_.push_back({text, std::move(make)});
  if (entries_.size() == 1)
    QMetaObject::invokeMethod(this, &BoxQueue::OpenNext, Qt::QueuedConnection);
}

void BoxQueue::Finish() {
  OpenNext();
  if (entries_.empty()) return;
  QEventLoop loop;
  connect(this, &BoxQueue::Finished, &loop, &QEventLoop::quit);
  loop.exec();
}

// The window of the box before is not active yet again when the next one opens.
void BoxQueue::OpenNext() {
  while (!open_ && !entries_.empty()) {
    if (QWidget* active = QApplication::activeWindow()) over_ = active;
    open_ = entries_.front().MakeBox(over_);
    if (!open_) entries_.pop_front();
  }
  if (entries_.empty()) emit Finished();
  if (!open_ || open_->isVisible()) return;
  // A box goes with the window that it stands over, too.
  const auto closed = [this] {
    open_ = nullptr;
    entries_.pop_front();
    QMetaObject::invokeMethod(this, &BoxQueue::OpenNext, Qt::QueuedConnection);
  };
  open_->setAttribute(Qt::WA_DeleteOnClose);
  connect(open_, &QDialog::finished, this, [this, closed] {
    disconnect(open_, nullptr, this, nullptr);
    closed();
  });
  connect(open_, &QObject::destroyed, this, closed);
  open_->setWindowModality(Qt::ApplicationModal);
  open_->show();
}

}  // namespace torvane
