#include "plot/picture_export.h"

#include <QBuffer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <optional>

namespace torvane {

namespace {

constexpr QSize PictureSize(960, 640);  // of the picture's design, in pixels
constexpr int PictureDpi = 96;
constexpr int ImageRatio = 2;  // a png is read on dense screens too
constexpr int Ratio = 10;      // a screen's pixels are whole: finer ones keep curves smooth

// Fonts and pictures need an application object; a program without one gets a silent one, without
// a display whatever the environment says.
class ApplicationForPictures {
 public:
  ApplicationForPictures() {
    if (QCoreApplication::instance()) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    application_.emplace(argumentCount_, arguments_);
  }

 private:
  char name_[8] = "torvane";
  char* arguments_[2] = {name_, nullptr};
  int argumentCount_ = 1;
  std::optional<QGuiApplication> application_;
};

bool PaintOn(QPaintDevice& device, const Picture& picture, double scale = 1.0) {
  QPainter painter;
  if (!painter.begin(&device)) return false;
  painter.scale(scale, scale);
  picture.Paint(painter, PictureSize * Ratio, Ratio);
  return painter.end();
}

bool WriteImage(QIODevice& device, const Picture& picture) {
  return PictureImage(picture).save(&device, "PNG");
}

bool WriteSvg(QIODevice& device, const Picture& picture) {
  QSvgGenerator svg;
  svg.setOutputDevice(&device);
  svg.setSize(PictureSize);
  svg.setResolution(PictureDpi);
  svg.setViewBox(QRect(QPoint(0, 0), PictureSize * Ratio));
  svg.setTitle(QString::fromStdString(picture.Title));
  return PaintOn(svg, picture);
}

bool WritePdf(QIODevice& device, const Picture& picture) {
  QPdfWriter pdf(&device);
  pdf.setTitle(QString::fromStdString(picture.Title));
  pdf.setResolution(PictureDpi * Ratio);
  pdf.setPageMargins(QMarginsF());
  pdf.setPageSize(QPageSize(QSizeF(PictureSize) * 72.0 / PictureDpi, QPageSize::Point));
  return PaintOn(pdf, picture);
}

using Writer = bool (*)(QIODevice&, const Picture&);

Writer WriterFor(const QString& ending) {
  if (ending == u"png") return WriteImage;
  if (ending == u"svg") return WriteSvg;
  if (ending == u"pdf") return WritePdf;
  return nullptr;
}

}  // namespace

std::string ExportPicture(const Picture& picture, const std::string& file, Readerless pipes) {
  const ApplicationForPictures application;
  const QString name = QString::fromStdString(file);
  const Writer write = WriterFor(QFileInfo(name).suffix().toLower());
  if (!write) return "A picture's name must end in .png, .svg or .pdf: " + file;
  QBuffer written;
  if (!written.open(QIODevice::WriteOnly) || !write(written, picture)) return "Cannot draw " + file;
  const QByteArray& bytes = written.data();
  return ReplaceFile(file, {bytes.constData(), static_cast<std::size_t>(bytes.size())}, pipes);
}

QImage PictureImage(const Picture& picture) {
  QImage image(PictureSize * ImageRatio, QImage::Format_RGB32);
  image.setDotsPerMeterX(PictureDpi * ImageRatio * 10000 / 254);
  image.setDotsPerMeterY(PictureDpi * ImageRatio * 10000 / 254);
  PaintOn(image, picture, 1.0 * ImageRatio / Ratio);
  return image;
}

}  // namespace torvane
