#include "desktop.h"

#include <QApplication>
#include <QLabel>
#include <QMdiSubWindow>
#include <QScrollBar>
#include <QTableWidget>
#include <QWheelEvent>
#include <algorithm>
#include <map>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/text.h"

namespace torvane::test {
namespace {

constexpr int LongestWait = 10000;  // ms; a very slow machine needs seconds for a run

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

// A table's cell by line and column, or the value of the line with that name.
QTableWidgetItem& Cell(const QTableWidget& table, const QString& place) {
  const QStringList numbers = place.split(u',');
  const auto named = table.findItems(place, Qt::MatchExactly);
  QTableWidgetItem* item = numbers.size() == 2 ? table.item(numbers[0].toInt(), numbers[1].toInt())
                           : named.isEmpty()   ? nullptr
                                               : table.item(named.front()->row(), 1);
  if (!item) throw std::runtime_error("no cell " + place.toStdString());
  return *item;
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
  QCoreApplication::processEvents();
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
  if (bracket == std::string::npos) {
    auto& widget = Find<QWidget>(name);
    return {widget, widget.rect().center()};
  }
  const auto& table = Find<QTableWidget>(name.substr(0, bracket));
  const QTableWidgetItem& item =
      Cell(table, QString::fromStdString(name).section(u'[', 1).chopped(1));
  return {*table.viewport(), table.visualItemRect(&item).center()};
}

// What is done to the program rather than to one control.
bool Desktop::DoToAll(const std::string& verb, const std::string& rest) {
  if (verb == "model") {
    auto& list = Find<QComboBox>("ModelCmB");
    list.setCurrentText(QString::fromStdString(rest));
    emit list.activated(list.currentIndex());
  } else if (verb == "run") {
    const double until = Panel->Model()->Time() + ParseNumber(rest).value();
    Click("SBRun");
    EXPECT_TRUE(WaitFor([&] { return Panel->Model()->Time() >= until; })) << rest;
    Click("SBStop");
  } else if (verb == "answer") {
    Reports.Answer = rest == "ok";
  } else if (verb == "set") {
    const auto blank = rest.find(' ');
    Const(rest.substr(0, blank)).Set(ParseNumber(rest.substr(blank + 1)).value());
  } else {
    return false;
  }
  return true;
}

void Desktop::Do(const std::string& step) {
  const QString words = QString::fromStdString(step);
  const std::string verb = words.section(u' ', 0, 0).toStdString();
  const QString rest = words.section(u' ', 1);
  if (DoToAll(verb, rest.toStdString())) return;
  const std::string name = rest.section(u' ', 0, 0).toStdString();
  if (auto* command =
          name.find('[') < name.size() ? nullptr : qobject_cast<QAction*>(Named(name))) {
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
    control.setFocus();
  } else if (verb == "close") {
    (qobject_cast<QMdiSubWindow*>(control.parentWidget()) ? control.parentWidget() : &control)
        ->close();
  } else {
    throw std::runtime_error("no gesture " + verb);
  }
}

std::string Desktop::Shown(const std::string& name) {
  const QString text = QString::fromStdString(name);
  if (name == "undo") return Find<QAction>("MIUndo").text().mid(5).toStdString();
  if (name == "redo") return Find<QAction>("MIRedo").text().mid(5).toStdString();
  if (name == "notice") {
    const auto* notice = Panel->findChild<QLabel*>("LNotice");
    return notice && notice->isVisible() ? notice->text().toStdString() : "";
  }
  if (text.endsWith(u']')) {
    const auto& table = Find<QTableWidget>(text.section(u'[', 0, 0).toStdString());
    return Cell(table, text.section(u'[', 1).chopped(1)).text().toStdString();
  }
  QObject* found = Named(text.section(u'.', 0, 0).toStdString());
  const std::string property = text.section(u'.', 1).toStdString();
  const char* usual = qobject_cast<QComboBox*>(found) ? "currentText" : "text";
  return found->property(property.empty() ? usual : property.c_str()).toString().toStdString();
}

// Neither cut off nor covered by what stands beside it.
bool Fits(const QWidget& widget) {
  const QWidget& parent = *widget.parentWidget();
  for (const auto* other : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    const bool covers = other->isVisible() && other->geometry().intersects(widget.geometry());
    if (covers && other != &widget) return false;
  }
  const auto* table = qobject_cast<const QTableWidget*>(&widget);
  for (int column = 0; table && column < table->columnCount(); ++column) {
    const int wanted = static_cast<const QAbstractItemView*>(table)->sizeHintForColumn(column);
    if (!table->isColumnHidden(column) && table->columnWidth(column) < wanted) return false;
  }
  return parent.rect().contains(widget.geometry()) &&
         widget.height() >= widget.heightForWidth(widget.width()) &&
         (!table || table->horizontalScrollBar()->maximum() == 0);
}

// What of one thing to be seen is not so; empty when all is well.
std::string Desktop::Missing(const std::string& seen) {
  if (seen.starts_with("saved ")) {
    const QString wanted = QString::fromStdString(seen.substr(6));
    const QString head = wanted.section(u'*', 0, 0);
    const QString tail = wanted.section(u'*', -1);
    const QString text = QString::fromStdString(ModelFileText(*Panel->Model()));
    for (const QString& line : text.split(u"\r\n"_qs)) {
      const bool longEnough = line.size() >= wanted.size() - 1;
      if (line == wanted ||
          (wanted.contains(u'*') && longEnough && line.startsWith(head) && line.endsWith(tail)))
        return {};
    }
    return "it is not in " +
           text.section(wanted.section(u',', 0, -2), 1, 1).section(u"\r\n"_qs, 0, 0).toStdString();
  }
  const auto equals = seen.find('=');
  if (equals != std::string::npos) {
    const std::string shown = Shown(seen.substr(0, equals));
    return shown == seen.substr(equals + 1) ? "" : "it is \"" + shown + "\"";
  }
  static const std::map<std::string, std::pair<const char*, bool>> states = {
      {"on", {"checked", true}},      {"off", {"checked", false}},
      {"enabled", {"enabled", true}}, {"disabled", {"enabled", false}},
      {"shown", {"visible", true}},   {"hidden", {"visible", false}},
      {"focused", {"focus", true}}};
  const auto blank = seen.find(' ');
  if (seen.ends_with(" fits")) return Fits(Find<QWidget>(seen.substr(0, blank))) ? "" : "no";
  const auto& [property, value] = states.at(seen.substr(blank + 1));
  return Named(seen.substr(0, blank))->property(property).toBool() == value ? "" : "it is not";
}

void Desktop::Play(const std::string& script) {
  for (const QString& line : QString::fromStdString(script).split(u'\n', Qt::SkipEmptyParts)) {
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
      } else if (!QTest::qWaitFor([&] { return Missing(seen).empty(); }, LongestWait)) {
        ADD_FAILURE() << where << "\n" << seen << ": " << Missing(seen);
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
