#include "desktop.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDeadlineTimer>
#include <QDialog>
#include <QDropEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QTextBrowser>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>

#include "core/constant.h"
#include "core/text.h"
#include "seen.h"
#include "support/expected_lines.h"
#include "ui/desk/file_commands.h"
#include "ui/panes/diagram/diagram_view.h"
#include "ui/session/user_settings.h"

namespace torvane::test {
namespace {

constexpr int LongestWait = 120000;  // ms; what is expected is there at once, but on a busy machine

std::vector<std::string> Parts(const QString& text) {
  std::vector<std::string> parts;
  for (const QString& part : text.split(u"; "_qs, Qt::SkipEmptyParts)) {
    if (!part.trimmed().isEmpty()) parts.push_back(part.trimmed().toStdString());
  }
  return parts;
}

Qt::KeyboardModifiers Modifiers(const QString& text) {
  return text.endsWith(u"Ctrl")    ? Qt::ControlModifier
         : text.endsWith(u"Shift") ? Qt::ShiftModifier
                                   : Qt::NoModifier;
}

std::vector<int> Numbers(const QString& text) {
  std::vector<int> numbers;
  for (const QString& number : text.split(u',')) numbers.push_back(number.toInt());
  return numbers;
}

void Send(QEvent::Type type, const Target& to, Qt::MouseButton button, Qt::MouseButtons held,
          Qt::KeyboardModifiers keys) {
  QMouseEvent mouse(type, to.Place, to.Widget.mapToGlobal(to.Place), button, held, keys);
  QApplication::sendEvent(&to.Widget, &mouse);
}

// A box that opens takes the release: then the mouse comes back with its button up.
void Drag(const Target& from, const QPoint& by, Qt::KeyboardModifiers keys, bool lost) {
  Send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton, keys);
  for (const int part : {1, 2, 3}) {
    const Target at{from.Widget, from.Place + by * part / 3};
    Send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton, keys);
  }
  if (lost)
    return Send(QEvent::MouseMove, {from.Widget, from.Place + 3 * by}, Qt::NoButton, {}, keys);
  Send(QEvent::MouseButtonRelease, {from.Widget, from.Place + by}, Qt::LeftButton, {}, keys);
}

}  // namespace

Desktop::Desktop() {
  Panel->resize(Small);
  Panel->show();
  LetEnd();
}

// What windows asked for when they were closed has happened then: an end of the program, after
// which no box would wait for its answer.
void Desktop::LetEnd() {
  QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(); });
  QCoreApplication::exec();
}

Desktop::~Desktop() {
  Panel.reset();
  UserSettings().clear();
}

// Of controls of one name, that on the screen.
QObject* Desktop::Named(const std::string& name) {
  if (name == "focus") return QApplication::focusWidget();
  if (name == "panel") return Panel.get();
  QObject* found = Panel.get();
  for (const QString& part : QString::fromStdString(name).split(u'/')) {
    const QList<QObject*> namesakes = found->findChildren<QObject*>(part);
    if (namesakes.isEmpty()) throw std::runtime_error("no control " + name);
    const auto onScreen =
        std::find_if(namesakes.begin(), namesakes.end(), [](const QObject* object) {
          return object->isWidgetType() && object->property("visible").toBool();
        });
    found = onScreen == namesakes.end() ? namesakes.front() : *onScreen;
  }
  return found;
}

Target Desktop::At(const std::string& name) {
  const auto bracket = name.find('[');
  const auto at = name.find('@');
  if (at != std::string::npos) {
    auto& widget = Find<QWidget>(name.substr(0, at));
    const QStringList shares = QString::fromStdString(name.substr(at + 1)).split(u',');
    return {widget,
            {qRound(shares[0].toDouble() * widget.width()),
             qRound(shares[1].toDouble() * widget.height())}};
  }
  if (bracket == std::string::npos) {
    // A wide check box or radio button has its mark at the left.
    auto& widget = Find<QWidget>(name);
    const bool marked = widget.inherits("QCheckBox") || widget.inherits("QRadioButton");
    const QPoint middle = widget.rect().center();
    return {widget, {marked ? std::min(8, middle.x()) : middle.x(), middle.y()}};
  }
  const QString inside = QString::fromStdString(name).section(u'[', 1).chopped(1);
  if (const auto* diagram = qobject_cast<DiagramView*>(Named(name.substr(0, bracket)))) {
    return {const_cast<DiagramView&>(*diagram), diagram->PlaceOf(inside.toStdString()).center()};
  }
  if (auto* text = qobject_cast<QTextBrowser*>(Named(name.substr(0, bracket)))) {
    const QTextCursor end = text->document()->find(QString(inside).replace(u"="_qs, u" = "_qs));
    text->setTextCursor(end);
    return {*text->viewport(), text->cursorRect(end).center() - QPoint(3, 0)};
  }
  const auto& table = Find<QTableWidget>(name.substr(0, bracket));
  const QTableWidgetItem& item = Cell(table, inside);
  return {*table.viewport(), table.visualItemRect(&item).center()};
}

// Answers modal boxes as soon as they are there.
void Desktop::AnswerBox() {
  QTimer::singleShot(5, &answering_, [this] {
    auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!box) return AnswerBox();
    const QString answer = answers_.takeFirst();
    if (!answers_.isEmpty()) AnswerBox();
    box_ = box->windowTitle();
    for (const char* told : {"text", "informativeText"}) {
      if (box->property(told).isValid()) box_ += u'|' + box->property(told).toString();
    }
    const auto* list = box->findChild<QPlainTextEdit*>();
    if (list) box_ += (list->isReadOnly() ? u'|' : u'?') + list->toPlainText().replace(u'\n', u'/');
    if (const auto* files = qobject_cast<QFileDialog*>(box)) {
      box_ += u'|' + files->directory().path() + u'|' + files->nameFilters().join(u',');
    }
    if (answer.isEmpty()) return box->reject();
    if (auto* name = box->findChild<QLineEdit*>("fileNameEdit")) {
      name->setText(answer);
      QTest::keyClick(name, Qt::Key_Return);
    }
    if (auto* input = qobject_cast<QInputDialog*>(box)) {
      input->setTextValue(answer);
      return input->accept();
    }
    for (QAbstractButton* button : box->findChildren<QAbstractButton*>()) {
      if (button->text().remove(u'&') == answer) return button->click();
    }
  });
}

// What is done to the program rather than to one control.
bool Desktop::DoToAll(const std::string& verb, const QString& rest) {
  const QString first = rest.section(u' ', 0, 0);
  const QString second = rest.section(u' ', 1);
  if (verb == "model") {
    auto& list = Find<QComboBox>("ModelCmB");
    list.setCurrentText(rest);
    emit list.activated(list.currentIndex());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
  } else if (verb == "run") {
    const double until = Panel->Model()->Time() + ParseNumber(rest.toStdString()).value();
    Click("SBRun");
    // Without the pauses of other waits, in which the model would rest.
    const QDeadlineTimer latest(LongestWait);
    while (Panel->Model()->Time() < until && !latest.hasExpired())
      QCoreApplication::processEvents();
    EXPECT_GE(Panel->Model()->Time(), until);
    Click("SBStop");
  } else if (verb == "answer") {
    Reports.Answer = rest == "ok";
  } else if (verb == "set") {
    Const(first.toStdString()).Set(ParseNumber(second.toStdString()).value());
  } else if (verb == "box") {
    answers_ << rest;
    if (answers_.size() == 1) AnswerBox();
  } else if (verb == "put") {
    QFile file(first);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QString(second).replace(u"\\n"_qs, u"\n"_qs).toUtf8());
  } else if (verb == "remove") {
    EXPECT_TRUE(QFile::remove(rest));
  } else {
    return DoToWindow(verb, rest);
  }
  return true;
}

bool Desktop::DoToWindow(const std::string& verb, const QString& rest) {
  if (verb == "size") {
    Panel->resize({Numbers(rest)[0], Numbers(rest)[1]});
  } else if (verb == "place") {
    const std::vector<int> place = Numbers(rest.section(u' ', 1));
    WindowOf(Find<QWidget>(rest.section(u' ', 0, 0).toStdString()))
        .setGeometry(place[0], place[1], place[2], place[3]);
  } else if (verb == "start") {
    Panel->close();
    Panel = std::make_unique<ControlPanel>(Data, "", ControlPanel::Windows::AsLeft);
    Panel->ShowAtStart(false);
    Panel->Files().Start({}, true);
  } else if (verb == "end") {
    Panel->EndUnasked();
    LetEnd();
  } else if (verb == "look") {
    if (rest == "clipboard") {
      looks_["clipboard"].first = QApplication::clipboard()->image();
      return true;
    }
    // A row that turns asks the window around it for another layout, which moves the plot.
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    Bench().RefreshInstruments();  // what the next tick of the clock would paint
    auto& widget = Find<QWidget>(rest.toStdString());
    widget.window()->repaint();  // at once: the platform gathers updates for some milliseconds
    looks_[rest.toStdString()] = {PictureOf(widget), WindowOf(widget).geometry()};
  } else if (verb == "pick") {
    auto& menu = Find<QMenu>(rest.section(u' ', 0, 0).toStdString());
    emit menu.aboutToShow();
    for (QAction* item : menu.actions()) {
      if (item->text().remove(u'&').section(u'\t', 0, 0) == rest.section(u' ', 1)) {
        item->trigger();
        return true;
      }
    }
    throw std::runtime_error("no item " + rest.toStdString());
  } else if (verb == "drop") {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(rest)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Panel.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Panel.get(), &drop);
  } else {
    return false;
  }
  QCoreApplication::processEvents();
  return true;
}

void Desktop::Do(const std::string& step) {
  const QString words = QString::fromStdString(step);
  const std::string verb = words.section(u' ', 0, 0).toStdString();
  const QString rest = words.section(u' ', 1);
  if (DoToAll(verb, rest)) return;
  const std::string name = rest.section(u' ', 0, 0).toStdString();
  if (auto* command =
          name.find_first_of("[@") < name.size() ? nullptr : qobject_cast<QAction*>(Named(name))) {
    EXPECT_TRUE(command->isEnabled()) << name;
    return command->trigger();
  }
  DoAt(verb, At(name), rest.section(u' ', 1));
}

void Desktop::DoAt(const std::string& verb, const Target& at, const QString& text) {
  QWidget& control = at.Widget;
  if (verb == "click") {
    EXPECT_TRUE(control.isEnabled()) << control.objectName().toStdString();
    QTest::mouseClick(&control, Qt::LeftButton, {}, at.Place);
  } else if (verb == "double") {
    QTest::mouseDClick(&control, Qt::LeftButton, {}, at.Place);
  } else if (verb == "menu") {
    QContextMenuEvent menu(QContextMenuEvent::Mouse, at.Place, control.mapToGlobal(at.Place));
    QApplication::sendEvent(&control, &menu);
  } else if (verb == "type" || verb == "write") {
    control.setFocus();
    dynamic_cast<QLineEdit&>(control).selectAll();
    QTest::keyClicks(&control, text);
    if (verb == "type") QTest::keyClick(&control, Qt::Key_Return);
  } else if (verb == "keys") {
    for (const QChar key : text) QTest::keyClick(QApplication::focusWidget(), key.toLatin1());
  } else if (verb == "key") {
    const QKeyCombination key = QKeySequence(text)[0];
    QTest::keyClick(&control, key.key(), key.keyboardModifiers());
  } else if (verb == "wheel") {
    QWheelEvent wheel(at.Place, control.mapToGlobal(at.Place), {},
                      {0, text.section(u' ', 0, 0).toInt()}, {}, Modifiers(text), {}, false);
    QApplication::sendEvent(&control, &wheel);
  } else if (verb == "point") {
    Send(QEvent::MouseMove, at, Qt::NoButton, {}, {});
  } else if (verb == "drag") {
    const QStringList by = text.section(u' ', 0, 0).split(u',');
    Drag(at, {by[0].toInt(), by[1].toInt()}, Modifiers(text), text.endsWith(u"lost"));
  } else if (verb == "choose") {
    auto& list = dynamic_cast<QComboBox&>(control);
    list.setCurrentText(text);
    emit list.activated(list.currentIndex());
  } else if (verb == "resize") {
    control.resize(text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt());
  } else if (verb == "focus") {
    control.activateWindow();
    EXPECT_TRUE(WaitFor([&] { return control.isActiveWindow(); }));
    control.setFocus();
  } else if (verb == "close") {
    (qobject_cast<QMdiSubWindow*>(control.parentWidget()) ? control.parentWidget() : &control)
        ->close();
  } else {
    throw std::runtime_error("no gesture " + verb);
  }
}

void Desktop::Play(const std::string& script) {
  const QString lines = QString::fromStdString(script).replace(u'~', folder_.path());
  for (const QString& line : lines.split(u'\n', Qt::SkipEmptyParts)) {
    if (line.trimmed().isEmpty() || line.trimmed().startsWith(u'#')) continue;
    const std::string where = line.trimmed().toStdString();
    for (const std::string& step : Parts(line.section(u"->"_qs, 0, 0))) Do(step);
    Messages reports;
    for (const std::string& seen : Parts(line.section(u"->"_qs, 1))) {
      if (seen.starts_with("report ")) {
        reports.push_back(QString::fromStdString(seen.substr(7))
                              .replace(u"\\n"_qs, u"\n"_qs)
                              .replace(u"\\r"_qs, u"\r"_qs)
                              .toStdString());
      } else if (const QStringList words = QString::fromStdString(seen).split(u' ');
                 words.size() == 3 && words[1] == "like") {
        QCoreApplication::processEvents();
        ExpectLines("ui/" + words[2].toStdString() + ".look", Sheet(words[0].toStdString()));
      } else if (!QTest::qWaitFor([&] { return Missing(seen).empty(); }, LongestWait)) {
        ADD_FAILURE() << where << "\n" << seen << ": " << Missing(seen) << KeptPictures(seen);
        return;
      }
    }
    Messages reported;
    EXPECT_TRUE(WaitFor([&] {
      for (const std::string& report : Reports.Take()) reported.push_back(report);
      return reported.size() >= reports.size();
    }));
    EXPECT_EQ(reported, reports) << where;
    if (HasFailure()) return;
  }
}

}  // namespace torvane::test
