#include "ui/widgets/picture_printing.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <memory>

#include "core/files/atomic_save.h"
#include "core/messages.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/pane_dialog.h"

namespace torvane {

namespace {

// Empty, or what went wrong. A printer object writes to its file piece by piece; a document of the
// same layout in memory can take the file's place at once.
std::string PrintToFile(const QPrinter& printer, const PicturePage& page) {
  const std::string file = printer.outputFileName().toStdString();
  QBuffer written;
  if (!written.open(QIODevice::WriteOnly)) return "Cannot print to " + file;
  {
    QPdfWriter pdf(&written);
    pdf.setTitle(page.Heading);
    pdf.setPageLayout(printer.pageLayout());
    pdf.setResolution(printer.resolution());
    if (!PrintPage(pdf, page, printer.resolution())) return "Cannot print to " + file;
  }
  const QByteArray& bytes = written.data();
  return ReplaceFile(file, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

std::string PrintOnPaper(QPrinter& printer, const PicturePage& page) {
  if (PrintPage(printer, page, printer.resolution())) return {};
  return "Cannot print on " + printer.printerName().toStdString();
}

}  // namespace

void PrintPicture(QWidget& plot, const PicturePage& page) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(page.Heading);
  printer.setPageOrientation(QPageLayout::Landscape);
  auto dialog = std::make_unique<QPrintDialog>(&printer, plot.window());
  dialog->setObjectName(QStringLiteral("PrintDialog"));
  dialog->setWindowTitle(QStringLiteral("Print"));
  if (!AskOver(plot, std::move(dialog))) return;
  const QString file = printer.outputFileName();
  const std::string fault =
      file.isEmpty() ? PrintOnPaper(printer, page) : PrintToFile(printer, page);
  if (fault.empty()) {
    ShowNotice(plot,
               QStringLiteral("Printed to ") + (file.isEmpty() ? printer.printerName() : file));
  } else {
    Error(fault);
  }
}

}  // namespace torvane
