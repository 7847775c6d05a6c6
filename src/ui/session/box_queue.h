#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <deque>
#include <functional>

namespace torvane {

/// Boxes that tell something. They open one at a time, in the order in which they were added, and
/// never inside the call that adds one: that may be a view's commit, a paint or a load, and what it
/// works on could be gone when the box's own message loop came back to it.
class BoxQueue : public QObject {
  Q_OBJECT

 public:
  /// The application's queue, which lives as long as the application.
  static BoxQueue& OfApplication();

  /// Makes a box over the window; nullptr when there is nothing to open.
  using Make = std::function<QDialog*(QWidget* over)>;
  /// Opens a box when the message loop next has control and those before it are closed, and deletes
  /// it when it is closed. One with the text of a box that waits or is open is left out: what
  /// repeats itself with each frame would never end.
  void Add(const QString& text, Make make);
  /// Comes back when all boxes have been closed. Before a question, which may hang on what they
  /// tell.
  void Finish();

 signals:
  void Finished();

 private:
  struct Entry {
    QString Text;
    Make MakeBox;
  };

  void OpenNext();

  std::deque<Entry> entries_;  // the first is open when open_ is
  QPointer<QDialog> open_;
  QPointer<QWidget> over_;
};

/// Calls `what` from the message loop when no box, menu or dialog is open, unless the context is
/// gone by then. For what destroys windows or models: one of them may be waiting for a dialog.
void WhenNothingIsOpen(QObject& context, std::function<void()> what);

}  // namespace torvane
