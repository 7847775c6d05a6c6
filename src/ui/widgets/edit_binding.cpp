#include "ui/widgets/edit_binding.h"

#include <QKeyEvent>
#include <optional>
#include <utility>

#include "core/text.h"
#include "ui/widgets/digits.h"

namespace torvane {

EditBinding::EditBinding(QLineEdit& edit, Commit commit, Stored stored)
    : QObject(&edit), edit_(edit), commit_(std::move(commit)), stored_(std::move(stored)) {
  UseFixedDigits(edit);
  edit.installEventFilter(this);
  connect(&edit, &QLineEdit::editingFinished, this, &EditBinding::CommitText);
  Show();
}

void EditBinding::Show() {
  shown_ = QString::fromStdString(stored_());
  edit_.setText(shown_);
}

void EditBinding::CommitText() {
  if (committing_ || edit_.text() == shown_) return;
  committing_ = true;
  commit_(edit_.text().toStdString());
  Show();
  edit_.selectAll();
  committing_ = false;
}

bool EditBinding::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && edit_.text() != shown_) {
    Show();
    return true;
  }
  return QObject::eventFilter(watched, event);
}

EditBinding* BindNumber(QLineEdit& edit, std::function<void(double)> set,
                        std::function<double()> get) {
  const auto commit = [set = std::move(set)](const std::string& text) {
    if (const std::optional<double> number = ToNumber(text)) set(*number);
  };
  return new EditBinding(edit, commit, [get = std::move(get)] { return FormatEdit(get()); });
}

}  // namespace torvane
