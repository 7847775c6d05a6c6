#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QListWidget;

namespace torvane {

/// Asks for a new loop's name and for what it begins as: one of the loops in a folder.
class NewLoopDialog : public QDialog {
  Q_OBJECT

 public:
  /// The new file goes into `folder`. Without a loop in `templates` it says so and creates none.
  NewLoopDialog(const QString& templates, const QString& folder, QWidget* parent);

  /// The new loop's text and file.
  QString Text() const;
  QString Path() const;

 private:
  void Fill();
  void Check();

  QString templates_;
  QString folder_;
  QListWidget* list_;
  QLineEdit* name_;
  QLabel* fault_;
  QWidget* create_;
};

}  // namespace torvane
