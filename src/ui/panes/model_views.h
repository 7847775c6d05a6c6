#pragma once

#include <QDialog>
#include <QPixmap>

#include "ui/session/data_folder.h"

class QLabel;
class QPlainTextEdit;

namespace torvane {

/// Shows a model's block diagram, as large as the window and its own size allow. Says so when the
/// picture file is missing.
class TZelModelPictureF : public QDialog {
 public:
  explicit TZelModelPictureF(QWidget* parent);
  void ShowModel(const QString& modelName, const QString& file, const DataFolder& folder);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Fit();

  QLabel* picture_;
  QPixmap original_;
};

/// Shows a model's description. Says so when the text file is missing.
class TZelModelTextF : public QDialog {
 public:
  explicit TZelModelTextF(QWidget* parent);
  void ShowModel(const QString& modelName, const QString& file, const DataFolder& folder);
  /// Shows another text about a model.
  void ShowText(const QString& title, const QString& text);

 private:
  QPlainTextEdit* text_;
};

}  // namespace torvane
