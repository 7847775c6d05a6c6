#include "monkey.h"

#include <unistd.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QFileDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSlider>
#include <QSplitterHandle>
#include <QTabBar>
#include <QTableWidget>
#include <QTimer>
#include <cstdlib>

#include "gestures.h"

namespace torvane::test {

namespace {

constexpr int LongestSilence = 120;  // seconds until a program that does not answer is ended
constexpr int MostInHaste = 6;

const QStringList Texts = {"abc",    "-1",   "0",   "5",   "0.001",        "1e5",         "1e300",
                           "1e-300", "nan",  "inf", "-",   "2.5k",         "1,5",         "Tach",
                           "20u",    "-0",   "1e",  " 3 ", "0x10",         "99999999999", "50",
                           "0.5",    "1000", "2",   "10m", "<b>a & b</b>", "%1%n"};
const QStringList Ends = {"key Return", "key Return", "key Tab",
                          "key Escape", "key Enter",  "key Up"};
const QStringList Keys = {
    "Ctrl+Z",  "Ctrl+Z",    "Ctrl+Z",      "Ctrl+Y", "Ctrl+R",       "Ctrl+.",       "F5",
    "F6",      "F7",        "F8",          "F9",     "Return",       "Return",       "Escape",
    "Tab",     "Shift+Tab", "Up",          "Down",   "Left",         "Right",        "Home",
    "End",     "PgDown",    "Delete",      "Space",  "F2",           "F1",           "Shift+F1",
    "Alt+F",   "Alt+R",     "Ctrl+O",      "Ctrl+S", "Ctrl+Shift+C", "Ctrl+Shift+D", "Ctrl+P",
    "Ctrl+F4", "Ctrl+Tab",  "Shift+Right", "Ctrl+A"};
const QStringList Sizes = {"1280,800", "800,600", "1000,700", "640,480"};

bool IsControl(const QWidget& widget) {
  return qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QLineEdit*>(&widget) ||
         qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QSlider*>(&widget) ||
         qobject_cast<const QAbstractItemView*>(&widget) ||
         qobject_cast<const QMenuBar*>(&widget) || qobject_cast<const QTabBar*>(&widget) ||
         qobject_cast<const QSplitterHandle*>(&widget) ||
         qobject_cast<const QMdiSubWindow*>(&widget) || widget.objectName().startsWith(u"PB");
}

// Those within a window, or within all.
QList<QWidget*> Controls(const QWidget* window) {
  QList<QWidget*> controls;
  for (QWidget* widget : QApplication::allWidgets()) {
    const bool within = !window || window == widget || window->isAncestorOf(widget);
    if (within && widget->isVisible() && widget->isEnabled() && IsControl(*widget))
      controls << widget;
  }
  return controls;
}

// As a window manager does, of which there is none.
void Activate() {
  QWidget* const modal = QApplication::activeModalWidget();
  if (modal && !modal->isActiveWindow()) modal->activateWindow();
  if (modal || QGuiApplication::focusWindow()) return;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && qobject_cast<QMainWindow*>(window)) window->activateWindow();
  }
}

// What a program that is in order never says.
void LookForFaults() {
  const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  if (!box) return;
  const QString text = box->windowTitle() + ": " + box->text();
  if (!text.contains(QLatin1String("Internal Error")) &&
      !text.contains(QLatin1String("Fault in")) && !text.startsWith(QLatin1String("Fatal")) &&
      !text.contains(QLatin1String("run-time error"))) {
    return;
  }
  qCritical("The program reports a fault of its own: %s", qUtf8Printable(text));
  std::abort();
}

}  // namespace

Monkey::Monkey(unsigned seed, double seconds, Haste haste, QStringList files, const QString& record)
    : random_(seed),
      end_(QDateTime::currentMSecsSinceEpoch() + qRound64(1e3 * seconds)),
      haste_(haste),
      files_(std::move(files)),
      record_(record) {
  Prepare();
  if (!record_.open(QIODevice::WriteOnly)) qFatal("Cannot write %s", qUtf8Printable(record));
}

Monkey::Monkey(const QString& record, Haste haste) : end_(0), haste_(haste), replays_(true) {
  Prepare();
  QFile file(record);
  if (!file.open(QIODevice::ReadOnly)) qFatal("Cannot open %s", qUtf8Printable(record));
  gestures_ = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
  for (QString& gesture : gestures_) {
    if (haste != Haste::Both && gesture.startsWith(u'+')) gesture.remove(0, 1);
    if (haste == Haste::Hastens) gesture.prepend(u'+');
  }
}

// The message loop serves a timer when all that was posted is done.
void Monkey::Prepare() {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &Monkey::Step);
}

bool Monkey::Over() const {
  return replays_ ? gestures_.isEmpty() : QDateTime::currentMSecsSinceEpoch() >= end_;
}

void Monkey::Begin() {
  if (!replays_) gestures_.clear();
  timer_.stop();
  Step();
}

// The next step is asked for before the gestures are made, as one may open a dialog with a loop of
// its own. They are posted: a timer that is being served is served by no loop within, and those
// that hasten are made one after the other, before what the first of them posts.
void Monkey::Step() {
  alarm(LongestSilence);
  LookForFaults();
  if (Over()) return QCoreApplication::exit();
  Activate();
  if (gestures_.isEmpty()) gestures_ = Invent();
  int hasty = 0;
  for (; gestures_.value(hasty + 1).startsWith(u'+') && hasty < MostInHaste; ++hasty) {
  }
  const QStringList now = gestures_.mid(0, hasty + 1);
  gestures_ = gestures_.mid(hasty + 1);
  timer_.start(hasty > 0 ? 20 : 2);
  for (const QString& gesture : now) {
    QMetaObject::invokeMethod(
        this, [this, gesture] { Make(gesture); }, Qt::QueuedConnection);
  }
}

void Monkey::Make(const QString& gesture) {
  if (record_.isOpen()) {
    record_.write(gesture.toUtf8() + '\n');
    record_.flush();
  }
  Perform(gesture.startsWith(u'+') ? gesture.mid(1) : gesture);
}

QString Monkey::AnyPlace() {
  return QStringLiteral("%1,%2").arg(Any(1001)).arg(Any(1001));
}

QStringList Monkey::Invent() {
  QStringList gestures;
  if (const QWidget* popup = QApplication::activePopupWidget()) {
    gestures = InventInMenu(*popup);
  } else if (const QWidget* box = QApplication::activeModalWidget()) {
    gestures = InventInBox(*box);
  } else {
    gestures = InventAnywhere();
  }
  // Which gesture follows which is not left to what is open alone.
  if (Any(4) == 0) gestures << "key " + AnyOf(Keys);
  const bool hasty = haste_ == Haste::Hastens || (haste_ == Haste::Both && Any(3) == 0);
  if (!hasty) return gestures;
  while (gestures.size() < 2 + Any(MostInHaste - 2)) gestures << InventAnywhere();
  for (qsizetype i = 1; i < gestures.size(); ++i) gestures[i].prepend(u'+');
  return gestures;
}

QStringList Monkey::InventAnywhere() {
  const QList<QWidget*> controls = Controls(nullptr);
  const int what = Any(100);
  if (what < 12 || controls.isEmpty()) return {"key " + AnyOf(Keys)};
  if (what == 12) return {"size " + AnyOf(Sizes)};
  if (what < 15) return {"drop " + AnyOf(files_)};
  if (what == 15 && Any(30) == 0) return {"signal 15"};
  if (what > 30) return InventAt(*AnyOf(controls));
  QList<QWidget*> edits;
  for (QWidget* control : controls) {
    if (qobject_cast<QLineEdit*>(control) || qobject_cast<QTableWidget*>(control)) edits << control;
  }
  return InventAt(*AnyOf(edits.isEmpty() ? controls : edits));
}

QStringList Monkey::InventInMenu(const QWidget& menu) {
  const QString address = AddressOf(menu);
  const int count = static_cast<int>(menu.actions().size());
  if (Any(5) == 0) return {"key Escape"};
  if (count > 0 && Any(4) > 0) return {QStringLiteral("click %1[%2]").arg(address).arg(Any(count))};
  if (Any(2) == 0) return {"key Down", "key Return"};
  return {"click " + address + u' ' + AnyPlace()};
}

QStringList Monkey::InventInBox(const QWidget& box) {
  if (Any(6) == 0) return {"key Escape"};
  if (qobject_cast<const QFileDialog*>(&box))
    return {"key Ctrl+A", "text " + AnyOf(files_), "key Return"};
  if (Any(3) == 0) return {"key Return"};
  const QList<QWidget*> controls = Controls(&box);
  return controls.isEmpty() ? QStringList{"key Return"} : InventAt(*AnyOf(controls));
}

QStringList Monkey::InventText() {
  const int kind = Any(10);
  QStringList gestures;
  if (kind > 1) gestures << "key Ctrl+A";
  gestures << "text " + (kind == 0 ? QString(300, u'9') : AnyOf(Texts));
  if (kind != 9) gestures << AnyOf(Ends);
  if (Any(6) == 0) gestures << AnyOf(Ends);
  return gestures;
}

QStringList Monkey::InventAt(const QWidget& widget) {
  const QString address = AddressOf(widget);
  const QString place = u' ' + AnyPlace();
  const int what = Any(20);
  if (what == 0) return {"right " + address + place};
  if (what == 1) return {"double " + address + place};
  if (what == 2) return {"wheel " + address + place + (Any(2) ? " 120" : " -240")};
  if (what == 3 || widget.objectName().startsWith(u"PB") ||
      qobject_cast<const QSplitterHandle*>(&widget) || qobject_cast<const QSlider*>(&widget)) {
    return {"drag " + address + place + u' ' + AnyPlace()};
  }
  if (const auto* bar = qobject_cast<const QMenuBar*>(&widget)) {
    return {QStringLiteral("click %1[%2]")
                .arg(address)
                .arg(Any(static_cast<int>(bar->actions().size())))};
  }
  if (const auto* table = qobject_cast<const QAbstractItemView*>(&widget)) {
    const int rows = table->model()->rowCount();
    const int columns = table->model()->columnCount();
    if (rows == 0 || columns == 0) return {"click " + address + place};
    const QStringList click = {QStringLiteral("%1 %2[%3,%4]")
                                   .arg(Any(4) ? "click" : "double", address)
                                   .arg(Any(rows))
                                   .arg(Any(columns))};
    return Any(3) ? click + InventText() : click;
  }
  const QStringList click = {"click " + address + " 500,500"};
  return qobject_cast<const QLineEdit*>(&widget) && Any(5) ? click + InventText() : click;
}

}  // namespace torvane::test
