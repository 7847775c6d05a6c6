#pragma once

#include <QLineEdit>
#include <QObject>
#include <functional>
#include <string>

namespace torvane {

/// Ties an edit to a stored value: a changed text is committed on Enter or when the focus leaves,
/// and the edit is then rewritten from what is stored. Escape takes the typing back.
class EditBinding : public QObject {
 public:
  using Commit = std::function<void(const std::string& text)>;
  using Stored = std::function<std::string()>;

  /// The binding belongs to the edit. `commit` may show message boxes.
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
  bool committing_ = false;  // a box shown by commit takes the focus, which would commit again
};

/// A binding for a number: text that is none is reported and changes nothing; the stored number is
/// shown with five significant digits.
EditBinding* BindNumber(QLineEdit& edit, std::function<void(double)> set,
                        std::function<double()> get);

}  // namespace torvane
