#include "ui/session/message_boxes.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <cstdlib>

namespace torvane {

namespace {

QMessageBox::Icon IconFor(MessageKind kind) {
  switch (kind) {
    case MessageKind::Note:
      return QMessageBox::Information;
    case MessageKind::FatalError:
      return QMessageBox::Critical;
    case MessageKind::Warning:
    case MessageKind::Error:
    case MessageKind::Conversion:
      break;
  }
  return QMessageBox::Warning;
}

// Texts are shown as written: a line may also end in a bare carriage return, and nothing in them is
// markup.
int Execute(MessageKind kind, const std::string& text, QMessageBox::StandardButtons buttons) {
  QString shown = QString::fromStdString(text);
  shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
  QMessageBox box(IconFor(kind), QString::fromLatin1(MessageCaption(kind)), shown, buttons,
                  QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  box.setObjectName(QStringLiteral("MessageBox"));
  return box.exec();
}

}  // namespace

MessageBoxes::MessageBoxes() : previous_(InstallMessageSink(this)) {}

MessageBoxes::~MessageBoxes() {
  InstallMessageSink(previous_);
}

void MessageBoxes::Show(MessageKind kind, const std::string& text) {
  Execute(kind, text, QMessageBox::Ok);
}

bool MessageBoxes::Ask(MessageKind kind, const std::string& text) {
  return Execute(kind, text, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

void MessageBoxes::EndApplication() {
  QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
}

}  // namespace torvane
