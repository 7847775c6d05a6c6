#pragma once

#include <QMenu>
#include <functional>
#include <string>

#include "plot/picture.h"

namespace torvane {

/// What a plot can give away, made when it is asked for.
struct ExportSource {
  QString Heading;   ///< of a printed page
  QString FileName;  ///< proposed, without an ending
  std::function<Picture()> MakePicture;
  std::function<std::string()> MakeCsv;
};

/// The menu of a plot, by which its picture and its data leave the program: to files, to the
/// clipboard and to the printer. It opens by the right mouse button on the plot, and a button can
/// show it too. Its shortcuts work in the plot's whole window.
///
/// What is given away is what the plot shows when the item is chosen. A file is written whole or
/// not at all; a failure is reported with the file and the reason.
class ExportMenu : public QMenu {
  Q_OBJECT

 public:
  /// Belongs to the plot.
  ExportMenu(QWidget& plot, ExportSource source);

  /// Through the system's dialog.
  void Print();

 private:
  /// Writes to the file; empty, or what went wrong.
  using Write = std::function<std::string(const std::string& file)>;
  QAction& Add(const char* name, const QString& text, void (ExportMenu::*chosen)());
  void AddPicture(const char* name, const QString& text, const QString& ending);
  void SaveData();
  void Save(const QString& ending, const Write& write);
  void CopyPicture();
  void CopyData();

  QWidget& plot_;
  ExportSource source_;
};

}  // namespace torvane
