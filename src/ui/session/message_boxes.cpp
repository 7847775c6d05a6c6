#include "ui/session/message_boxes.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <cstdlib>
#include <memory>

#include "ui/session/box_queue.h"

namespace torvane {

namespace {

QMessageBox::Icon IconFor(MessageKind kind) {
  switch (kind) {
    case MessageKind::Note:
      return QMessageBox::Information;
    case MessageKind::FatalError:
    case MessageKind::Error:
    case MessageKind::Conversion:
      return QMessageBox::Critical;
    case MessageKind::Warning:
      break;
  }
  return QMessageBox::Warning;
}

// Texts are shown as written: a line may also end in a bare carriage return, and nothing in them is
// markup.
std::unique_ptr<QMessageBox> MakeBox(MessageKind kind, const QString& text,
                                     QMessageBox::StandardButtons buttons, QWidget* over) {
  QString shown = text;
  shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
  auto box = std::make_unique<QMessageBox>(IconFor(kind), QString::fromLatin1(MessageCaption(kind)),
                                           shown, buttons, over);
  box->setTextFormat(Qt::PlainText);
  box->setObjectName(QStringLiteral("MessageBox"));
  return box;
}

}  // namespace

MessageBoxes::MessageBoxes() : previous_(InstallMessageSink(this)) {}

MessageBoxes::~MessageBoxes() {
  InstallMessageSink(previous_);
}

void MessageBoxes::Show(MessageKind kind, const std::string& text) {
  const QString told = QString::fromStdString(text);
  BoxQueue::OfApplication().Add(told, [kind, told](QWidget* over) {
    return MakeBox(kind, told, QMessageBox::Ok, over).release();
  });
}

bool MessageBoxes::Ask(MessageKind kind, const std::string& text) {
  BoxQueue::OfApplication().Finish();
  // The window below may go while the box closes, and takes it along.
  const QPointer<QMessageBox> box(MakeBox(kind, QString::fromStdString(text),
                                          QMessageBox::Ok | QMessageBox::Cancel,
                                          QApplication::activeWindow())
                                      .release());
  const bool yes = box->exec() == QMessageBox::Ok;
  delete box;
  return yes;
}

// The box may be the last window, whose end is a success elsewhere.
void MessageBoxes::EndApplication() {
  QGuiApplication::setQuitOnLastWindowClosed(false);
  BoxQueue::OfApplication().Add({}, [](QWidget*) {
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
    return nullptr;
  });
}

}  // namespace torvane
