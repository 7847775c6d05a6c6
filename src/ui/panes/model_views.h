#pragma once

#include <QDialog>
#include <QDockWidget>
#include <QPixmap>
#include <QPlainTextEdit>

#include "plot/diagram/loop_layout.h"
#include "ui/session/data_folder.h"

class QLabel;
class QMainWindow;
class QStackedWidget;

namespace torvane {

class DiagramView;
class ZelModel;

/// Shows a model's block diagram, live where the program has its drawing, else as the picture file
/// is, or says that it is missing. Opens as a window of its own, or as a pane that is docked.
class ModelPictureWindow : public QDockWidget {
 public:
  explicit ModelPictureWindow(QMainWindow& window);

  /// The model whose diagram is shown from now on; without one there is none. A window is hidden
  /// then unless it stays, a docked pane goes on with the next that has a diagram.
  void SetModel(ZelModel* model, const DataFolder& folder, bool stays);
  bool HasDiagram() const { return hasDiagram_; }
  DiagramView& Diagram() { return *diagram_; }

  void OpenWindow();
  /// At most so many pixels high.
  void OpenPane(int most);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void ShowPicture(const QString& file, const DataFolder& folder);
  void ShowLoopPicture(const ZelModel& model);
  void ShowPictureFile(const QString& path, const QString& words);
  void Fit();
  void FitWindow();
  void DrawWaiting();
  void ShowDrawn(ZelModel& model, const DrawnModel& drawn);

  QMainWindow& window_;
  QStackedWidget* pages_;
  DiagramView* diagram_;
  QLabel* picture_;
  QPixmap original_;
  bool hasDiagram_ = false;
  ZelModel* waiting_ = nullptr;  ///< to be drawn when this is shown
  LoopLayout layout_;
  bool fits_ = false;  ///< a window is to be as large as the drawing that is being made
};

/// Shows a model's description. Says so when the text file is missing.
class ModelTextWindow : public QDialog {
 public:
  explicit ModelTextWindow(QWidget* parent);
  void ShowModel(const QString& modelName, const QString& file, const DataFolder& folder);
  /// Shows a text about a model.
  void ShowText(const QString& modelName, const QString& text);
  /// Another text of the same model.
  void Renew(const QString& text) { text_->setPlainText(text); }

 private:
  QPlainTextEdit* text_;
};

}  // namespace torvane
