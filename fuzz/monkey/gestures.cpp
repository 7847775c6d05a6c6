#include "gestures.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QWheelEvent>
#include <QWindow>
#include <csignal>

// The toolkit's own entries for tests, beside those of its window systems.
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button,
                                      QEvent::Type type, Qt::KeyboardModifiers mods, int timestamp);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                    Qt::KeyboardModifiers mods, const QString& text, bool autorep,
                                    ushort count);

namespace torvane::test {

namespace {

constexpr int ClickMilliseconds = 1000;  // between two clicks that are no double click

bool IsNamed(const QWidget& widget, const QString& name) {
  return (widget.objectName().isEmpty() ? QLatin1String(widget.metaObject()->className())
                                        : widget.objectName()) == name;
}

QList<QWidget*> Within(const QWidget* window) {
  return window ? window->findChildren<QWidget*>() : QApplication::topLevelWidgets();
}

// What stands beside it with the same name is told by a number.
QString NameOf(const QWidget& widget, const QList<QWidget*>& others) {
  const QString name = widget.objectName().isEmpty()
                           ? QLatin1String(widget.metaObject()->className())
                           : widget.objectName();
  int before = 0;
  for (const QWidget* other : others) {
    if (other == &widget) break;
    if (IsNamed(*other, name)) ++before;
  }
  return before == 0 ? name : name + u'*' + QString::number(before);
}

QWidget* Find(const QString& address) {
  QWidget* found = nullptr;
  for (const QString& part : address.split(u'/')) {
    int before = part.section(u'*', 1).toInt();
    QWidget* next = nullptr;
    for (QWidget* widget : Within(found)) {
      if (!next && IsNamed(*widget, part.section(u'*', 0, 0)) && before-- == 0) next = widget;
    }
    if (!next) return nullptr;
    found = next;
  }
  return found;
}

QPoint Pair(const QString& numbers) {
  return {numbers.section(u',', 0, 0).toInt(), numbers.section(u',', 1).toInt()};
}

QPoint Place(const QWidget& widget, const QString& thousandths) {
  const QPoint share = Pair(thousandths);
  return {share.x() * (widget.width() - 1) / 1000, share.y() * (widget.height() - 1) / 1000};
}

QPoint ItemPlace(QWidget& widget, const QString& item) {
  if (const auto* table = qobject_cast<QAbstractItemView*>(&widget)) {
    const QPoint cell = Pair(item);
    const QRect rect = table->visualRect(table->model()->index(cell.x(), cell.y()));
    return table->viewport()->mapTo(&widget, rect.center());
  }
  QAction* const action = widget.actions().value(item.toInt());
  const auto* menu = qobject_cast<QMenu*>(&widget);
  const auto* bar = qobject_cast<QMenuBar*>(&widget);
  return (menu  ? menu->actionGeometry(action)
          : bar ? bar->actionGeometry(action)
                : QRect())
      .center();
}

struct Mouse {
  QWidget& Widget;

  void Send(QEvent::Type type, const QPoint& at, Qt::MouseButton button, Qt::MouseButtons held,
            int after) const {
    static int now = 0;
    now += after;
    QWidget& window = *Widget.window();
    qt_handleMouseEvent(window.windowHandle(), Widget.mapTo(&window, at), Widget.mapToGlobal(at),
                        held, button, type, {}, now);
  }
  void Click(const QPoint& at, Qt::MouseButton button, int after) const {
    const QPointer<QWidget> alive(&Widget);
    Send(QEvent::MouseMove, at, Qt::NoButton, {}, 1);
    if (alive) Send(QEvent::MouseButtonPress, at, button, button, after);
    if (alive && alive->window()->windowHandle())
      Send(QEvent::MouseButtonRelease, at, button, {}, 1);
  }
  void Drag(const QPoint& from, const QPoint& to) const {
    const QPointer<QWidget> alive(&Widget);
    Send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton, ClickMilliseconds);
    for (int part = 1; part <= 4 && alive; ++part) {
      Send(QEvent::MouseMove, from + (to - from) * part / 4, Qt::NoButton, Qt::LeftButton, 10);
    }
    if (alive) Send(QEvent::MouseButtonRelease, to, Qt::LeftButton, {}, 10);
  }
};

bool PerformMouse(const QString& verb, QWidget& widget, const QString& item,
                  const QStringList& rest) {
  const Mouse mouse{widget};
  const QPoint at = item.isEmpty() ? Place(widget, rest.value(0)) : ItemPlace(widget, item);
  if (verb == u"drag") {
    mouse.Drag(at, Place(widget, rest.value(1)));
  } else if (verb == u"wheel") {
    QWidget& window = *widget.window();
    QWheelEvent wheel(widget.mapTo(&window, at), widget.mapToGlobal(at), {},
                      {0, rest.value(1).toInt()}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window.windowHandle(), &wheel);
  } else {
    const QPointer<QWidget> alive(&widget);
    mouse.Click(at, verb == u"right" ? Qt::RightButton : Qt::LeftButton, ClickMilliseconds);
    if (verb == u"double" && alive && alive->isVisible()) mouse.Click(at, Qt::LeftButton, 10);
  }
  return true;
}

void Press(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    if (QWindow* window = QGuiApplication::focusWindow()) {
      qt_handleKeyEvent(window, type, key, modifiers, text, false, 1);
    }
  }
}

void Drop(const QString& file) {
  QWidget* const window = Find(QStringLiteral("TZelControlPanelF"));
  if (!window || QApplication::activeModalWidget()) return;
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(file)});
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, {});
  QCoreApplication::sendEvent(window, &drop);
}

}  // namespace

// Its window, the instrument's window within that, and itself.
QString AddressOf(const QWidget& widget) {
  if (widget.isWindow()) return NameOf(widget, QApplication::topLevelWidgets());
  const QWidget* around = widget.parentWidget();
  while (!around->isWindow() && !qobject_cast<QMdiSubWindow*>(around->parentWidget())) {
    around = around->parentWidget();
  }
  return AddressOf(*around) + u'/' + NameOf(widget, Within(around));
}

bool Perform(const QString& gesture) {
  const QString verb = gesture.section(u' ', 0, 0);
  const QString rest = gesture.section(u' ', 1).replace(u'~', QDir::homePath());
  if (verb == u"key") {
    const QKeySequence keys(rest);
    if (!keys.isEmpty()) Press(keys[0].key(), keys[0].keyboardModifiers(), {});
  } else if (verb == u"text") {
    for (const QChar letter : rest) Press(letter.toUpper().unicode(), {}, letter);
  } else if (verb == u"drop") {
    Drop(rest);
  } else if (verb == u"signal") {
    std::raise(rest.toInt());
  } else if (verb == u"size") {
    if (QWidget* window = Find(QStringLiteral("TZelControlPanelF"))) {
      window->resize(Pair(rest).x(), Pair(rest).y());
    }
  } else {
    const QString address = rest.section(u' ', 0, 0).section(u'[', 0, 0);
    const QString item = rest.section(u' ', 0, 0)
                             .section(u'[', 1)
                             .chopped(rest.section(u' ', 0, 0).contains(u'[') ? 1 : 0);
    QWidget* const widget = Find(address);
    if (!widget || !widget->isVisible() || !widget->window()->windowHandle()) return false;
    return PerformMouse(verb, *widget, item, rest.split(u' ').mid(1));
  }
  return true;
}

}  // namespace torvane::test
