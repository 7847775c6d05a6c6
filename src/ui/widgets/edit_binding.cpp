#include "ui/widgets/edit_binding.h"

#include <QKeyEvent>
#include <optional>
#include <utility>

#include "core/text.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/edit_shortcuts.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/typed_number.h"

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
  const bool pending = edit_.text() != shown_;
  if (pending && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    Show();
    return true;
  }
  if (SettleShortcut(edit_, *event, pending, [this] { CommitText(); })) return true;
  return QObject::eventFilter(watched, event);
}

std::string LimitNotice(double typed, double stored) {
  if (stored == -typed) return "stored without its sign";
  return "limited to " + FormatEdit(stored);
}

EditBinding* BindNumber(QLineEdit& edit, std::function<void(double)> set,
                        std::function<double()> get, NumberNotice notice) {
  const auto commit = [&edit, set = std::move(set), get,
                       notice = std::move(notice)](const std::string& text) {
    const std::optional<double> suffixed = ParseNumber(WithoutSuffix(text));
    const std::optional<double> typed = suffixed ? suffixed : ToNumber(text);
    if (!typed) return;
    set(*typed);
    const double stored = get();
    const std::string said = stored == *typed ? std::string() : notice(*typed, stored);
    if (!said.empty()) ShowNotice(edit, QString::fromStdString(said));
  };
  return new EditBinding(edit, commit, [get = std::move(get)] { return FormatEdit(get()); });
}

}  // namespace torvane
