#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QListWidget;

namespace torvane {

namespace Ui {
class AddDialog;
}

/// One thing that may be shown, by the name of its signal.
struct ShownItem {
  std::string Name;
  bool Showing = false;
  std::function<void(bool show)> SetShowing;
};

/// Lets the user choose which items are shown: moves their names between two lists, and tells the
/// items by Apply. Items of one name go together.
class AddDialog : public QDialog {
  Q_OBJECT

 public:
  AddDialog(std::vector<ShownItem> items, QWidget* parent);
  ~AddDialog() override;

  /// Tells every item by which list it stands in; for when Okay has been pressed.
  void Apply();

 private:
  std::vector<ShownItem> items_;
  std::unique_ptr<Ui::AddDialog> ui_;
};

}  // namespace torvane
