#include "ui/widgets/export_menu.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QMimeData>
#include <memory>
#include <utility>

#include "core/files/atomic_save.h"
#include "core/messages.h"
#include "plot/picture_export.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/pane_dialog.h"
#include "ui/widgets/picture_printing.h"

namespace torvane {

ExportMenu::ExportMenu(QWidget& plot, ExportSource source)
    : QMenu(&plot), plot_(plot), source_(std::move(source)) {
  setObjectName(QStringLiteral("MExport"));
  AddPicture("MIExportPng", QStringLiteral("Save as P&NG..."), QStringLiteral("png"));
  AddPicture("MIExportSvg", QStringLiteral("Save as &SVG..."), QStringLiteral("svg"));
  AddPicture("MIExportPdf", QStringLiteral("Save as P&DF..."), QStringLiteral("pdf"));
  Add("MIExportCsv", QStringLiteral("Save Data as &CSV..."), &ExportMenu::SaveData);
  addSeparator();
  Add("MICopyPicture", QStringLiteral("Copy &Picture"), &ExportMenu::CopyPicture)
      .setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+C")));
  Add("MICopyData", QStringLiteral("Copy Da&ta"), &ExportMenu::CopyData)
      .setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+D")));
  addSeparator();
  Add("MIPrint", QStringLiteral("P&rint..."), &ExportMenu::Print).setShortcut(QKeySequence::Print);
  for (QAction* action : actions()) action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  plot.window()->addActions(actions());
  plot.setContextMenuPolicy(Qt::CustomContextMenu);
  connect(&plot, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { popup(plot_.mapToGlobal(at)); });
}

QAction& ExportMenu::Add(const char* name, const QString& text, void (ExportMenu::*chosen)()) {
  QAction& action = *addAction(text);
  action.setObjectName(QLatin1String(name));
  connect(&action, &QAction::triggered, this, chosen);
  return action;
}

void ExportMenu::AddPicture(const char* name, const QString& text, const QString& ending) {
  QAction& action = *addAction(text);
  action.setObjectName(QLatin1String(name));
  connect(&action, &QAction::triggered, this, [this, ending] {
    Save(ending, [picture = source_.MakePicture()](const std::string& file) {
      return ExportPicture(picture, file);
    });
  });
}

void ExportMenu::SaveData() {
  Save(QStringLiteral("csv"),
       [data = source_.MakeCsv()](const std::string& file) { return ReplaceFile(file, data); });
}

void ExportMenu::Save(const QString& ending, const Write& write) {
  const QString path = AskForFile(
      plot_, {QStringLiteral("ExportDialog"), QStringLiteral("Save %1").arg(ending.toUpper()),
              QStringLiteral("%1 (*.%2)").arg(ending.toUpper(), ending),
              source_.FileName + u'.' + ending});
  if (path.isEmpty()) return;
  const std::string fault = write(path.toStdString());
  if (fault.empty()) {
    ShowNotice(plot_, QStringLiteral("Saved as %1").arg(path));
  } else {
    Error(fault);
  }
}

void ExportMenu::CopyPicture() {
  QGuiApplication::clipboard()->setImage(PictureImage(source_.MakePicture()));
  ShowNotice(plot_, QStringLiteral("The picture is on the clipboard"));
}

// As text for any program, and as what it is for those that know it.
void ExportMenu::CopyData() {
  const QByteArray csv = QByteArray::fromStdString(source_.MakeCsv());
  auto mime = std::make_unique<QMimeData>();
  mime->setText(QString::fromUtf8(csv));
  mime->setData(QStringLiteral("text/csv"), csv);
  QGuiApplication::clipboard()->setMimeData(mime.release());
  ShowNotice(plot_, QStringLiteral("The data are on the clipboard"));
}

void ExportMenu::Print() {
  const QString date = QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
  PrintPicture(plot_, {source_.MakePicture(), source_.Heading, date});
}

}  // namespace torvane
