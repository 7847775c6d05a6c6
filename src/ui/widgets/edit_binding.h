#pragma once

#include <QLineEdit>
#include <QObject>
#include <functional>
#include <string>

namespace torvane {

/// Ties an edit to a stored value: a changed text is committed on Enter or when the focus leaves,
/// and the edit is then rewritten from what is stored. Escape takes the typing back. A shortcut of
/// the program finds the text committed; undo and redo are the edit's own while it is not.
class EditBinding : public QObject {
 public:
  using Commit = std::function<void(const std::string& text)>;
  using Stored = std::function<std::string()>;

  /// The binding belongs to the edit.
  EditBinding(QLineEdit& edit, Commit commit, Stored stored);

  /// Rewrites the edit from the stored value.
  void Show();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void CommitText();

  QLineEdit& edit_;
  Commit commit_;
  Stored stored_;
  QString shown_;
  bool committing_ = false;  // commit may take the focus away, which would commit again
};

/// What to say of a number that is stored otherwise than typed; empty when there is nothing to say.
using NumberNotice = std::function<std::string(double typed, double stored)>;

/// "limited to 100", for a number that is stored as its limit; for one that is stored as its
/// magnitude, that it is.
std::string LimitNotice(double typed, double stored);

/// A binding for a number, which may have an engineering suffix: text that is none is reported and
/// changes nothing; the stored number is shown with five significant digits. Where it is not the
/// one that was typed, the notice at the edit says why.
EditBinding* BindNumber(QLineEdit& edit, std::function<void(double)> set,
                        std::function<double()> get, NumberNotice notice = LimitNotice);

}  // namespace torvane
