#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QTextBrowser>

#include "core/files/model_file.h"
#include "desktop.h"
#include "seen.h"
#include "ui/desk/tiling.h"

namespace torvane::test {

std::string Desktop::Shown(const std::string& name) {
  const QString text = QString::fromStdString(name);
  if (name == "undo") return Find<QAction>("MIUndo").text().mid(5).toStdString();
  if (name == "redo") return Find<QAction>("MIRedo").text().mid(5).toStdString();
  if (name == "box") return box_.toStdString();
  if (name == "clipboard") return QApplication::clipboard()->text().toStdString();
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
  if (property == "items" || property == "cells" || property == "header" || property == "rows") {
    return Texts(*found, text.section(u'.', 1)).join(u'|').toStdString();
  }
  if (property == "ambiguous") {
    return Ambiguous(dynamic_cast<QWidget&>(*found)).join(u'|').toStdString();
  }
  if (property == "cursor") {
    return std::to_string(dynamic_cast<QWidget&>(*found).cursor().shape());
  }
  if (property == "place" || property == "corner") {
    const QRect place = WindowOf(dynamic_cast<QWidget&>(*found)).geometry();
    if (property == "corner")
      return QStringLiteral("%1,%2").arg(place.x()).arg(place.y()).toStdString();
    return QStringLiteral("%1,%2,%3,%4")
        .arg(place.x())
        .arg(place.y())
        .arg(place.width())
        .arg(place.height())
        .toStdString();
  }
  const char* usual = qobject_cast<QComboBox*>(found) ? "currentText" : "text";
  return found->property(property.empty() ? usual : property.c_str()).toString().toStdString();
}

// Where a widget is kept that does not look as before.
std::string Desktop::KeptPictures(const std::string& seen) {
  const std::string name = seen.substr(0, seen.find(' '));
  if (!seen.ends_with(" unchanged") || name == "clipboard") return {};
  const std::string folder = testing::TempDir();
  looks_.at(name).first.save(QString::fromStdString(folder + "look-then.png"));
  PictureOf(Find<QWidget>(name)).save(QString::fromStdString(folder + "look-now.png"));
  return "\nPictures: " + folder + "look-then.png, look-now.png";
}

bool Desktop::Looks(const std::string& name, const QString& how) {
  if (name == "clipboard") return QApplication::clipboard()->image() == looks_.at(name).first;
  auto& widget = Find<QWidget>(name);
  const QRect is = WindowOf(widget).geometry();
  if (how == "inside") return WindowOf(widget).parentWidget()->rect().contains(is);
  if (how == "whole") return IsWhole(widget);
  if (how == "apart") {
    std::vector<QRect> places;
    for (const auto* window : Panel->findChildren<QMdiSubWindow*>()) {
      if (window->isVisible()) places.push_back(window->geometry());
    }
    return AreApart(places, widget.size());
  }
  const auto& [picture, was] = looks_.at(name);
  const bool same = PictureOf(widget) == picture;
  const std::map<QString, bool> so = {{"stays", is == was},
                                      {"wider", is.width() > was.width()},
                                      {"narrower", is.width() < was.width()},
                                      {"higher", is.height() > was.height()},
                                      {"lower", is.height() < was.height()},
                                      {"unchanged", same},
                                      {"repainted", !same}};
  return so.at(how);
}

// A line for each control of a window.
std::vector<std::string> Desktop::Sheet(const std::string& name) {
  std::vector<std::string> lines;
  for (QWidget* control : Find<QWidget>(name).findChildren<QWidget*>()) {
    if (control->objectName().isEmpty() || control->objectName().startsWith("qt_")) continue;
    QString line = control->objectName() + u':';
    for (const char* shown : {"text", "currentText", "value", "maximum", "format"}) {
      const QVariant value = control->property(shown);
      if (value.isValid()) line += u' ' + value.toString();
    }
    const QStringList listed = Texts(*control, "cells");
    if (!listed.isEmpty()) line += u" {"_qs + listed.join(u'|') + u'}';
    if (control->property("checked").toBool()) line += u" on"_qs;
    if (!control->isEnabled()) line += u" disabled"_qs;
    if (!control->isVisible()) line += u" hidden"_qs;
    lines.push_back(line.toStdString());
  }
  return lines;
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
  const QStringList words = QString::fromStdString(seen).split(u' ');
  if (words[0] == "file") {
    QFile file(words[1]);
    const QString wanted = QString::fromStdString(seen).section(u' ', 2);
    const bool holds = file.open(QIODevice::ReadOnly) && file.readAll().contains(wanted.toUtf8());
    return holds ? "" : "not so";
  }
  if (words.value(1) == "has") {
    const auto& text = Find<QTextBrowser>(words[0].toStdString());
    const QString wanted =
        QString::fromStdString(seen).section(u' ', 2).replace(u"\\n"_qs, u"\n"_qs);
    return text.toPlainText().contains(wanted) ? "" : text.toPlainText().toStdString();
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
  const std::string name = words[0].toStdString();
  if (words[1] == "beside") {
    const auto place = [&](const QString& window) {
      return WindowOf(Find<QWidget>(window.toStdString())).frameGeometry();
    };
    return place(words[0]).intersects(place(words[2])) ? "it is over it" : "";
  }
  if (words[1] == "fits") return Fits(Find<QWidget>(name)) ? "" : "no";
  if (!states.contains(words[1].toStdString())) return Looks(name, words[1]) ? "" : "it is not";
  const auto& [property, value] = states.at(words[1].toStdString());
  return Named(name)->property(property).toBool() == value ? "" : "it is not";
}

}  // namespace torvane::test
