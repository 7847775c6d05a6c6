#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "core/constant.h"

namespace torvane {

class EditBinding;

namespace Ui {
class AdjustDialog;
}

/// A small window above the main one that edits one constant while the model runs: by typing, by
/// steps up and down, or by a slider. Every change counts at once; Cancel takes them back.
class AdjustDialog : public QDialog, private ConstantObserver {
  Q_OBJECT

 public:
  /// The constant must outlive the window.
  AdjustDialog(Constant& constant, QWidget* parent);
  ~AdjustDialog() override;

  /// Opens it where it was left, by this program or an earlier run of it, or else beside an area of
  /// the display; always wholly on a display. The value of this moment is the one that Cancel
  /// returns to.
  void OpenBeside(const QRect& area);

  /// The value of this moment is the one that Cancel returns to from now on.
  void KeepValue();

 public slots:
  void accept() override;
  /// The window's frame and Escape come here too.
  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void ConnectButtons();
  void ConstantChanged(const Constant& constant) override;
  void ShowValue();
  void FocusValue();
  void RememberPlace();

  Constant& constant_;
  std::unique_ptr<Ui::AdjustDialog> ui_;
  EditBinding* value_;
  std::string opened_;  // the value of the opening, with all of its digits
};

}  // namespace torvane
