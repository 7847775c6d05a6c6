#include "ui/widgets/control_help.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWhatsThis>
#include <QWidget>
#include <utility>

#include "ui/widgets/help_texts.h"

namespace torvane {

namespace {

const char* TextFor(const QWidget& control) {
  const std::string name = control.objectName().toStdString();
  for (const QWidget* place = control.parentWidget(); place; place = place->parentWidget()) {
    const char* text = HelpText(place->objectName().toStdString() + "/" + name);
    if (text) return text;
  }
  return HelpText(name);
}

// The sentence of the control in the focus, or of what it is a part of; without one, in a box the
// pointer asks for a control. False where neither is the case.
bool ShowHelp() {
  for (QWidget* control = QApplication::focusWidget(); control; control = control->parentWidget()) {
    if (control->whatsThis().isEmpty()) continue;
    QWhatsThis::showText(control->mapToGlobal(control->rect().bottomLeft()), control->whatsThis(),
                         control);
    return true;
  }
  if (!QApplication::activeModalWidget()) return false;
  QWhatsThis::enterWhatsThisMode();
  return true;
}

class ControlHelp : public QObject {
 public:
  ControlHelp(QObject* parent, std::function<void()> otherwise)
      : QObject(parent), otherwise_(std::move(otherwise)) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> otherwise_;
};

bool ControlHelp::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Polish) {
    auto* control = qobject_cast<QWidget*>(watched);
    const bool named = control && !control->objectName().isEmpty();
    if (const char* text = named ? TextFor(*control) : nullptr) {
      control->setWhatsThis(QString::fromUtf8(text));
    }
    return false;
  }
  // Windows get the key before their controls.
  if (event->type() == QEvent::KeyPress && watched->isWindowType()) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() == Qt::Key_F1 && key.modifiers() == Qt::NoModifier) {
      if (!ShowHelp()) otherwise_();
      return true;
    }
  }
  return false;
}

}  // namespace

void HelpWithControls(QObject& owner, std::function<void()> otherwise) {
  QCoreApplication::instance()->installEventFilter(new ControlHelp(&owner, std::move(otherwise)));
}

}  // namespace torvane
