#include "plot/picture_export.h"

#include <QBuffer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <functional>
#include <optional>

#include "core/files/atomic_save.h"
#include "plot/response_painter.h"
#include "plot/scope_painter.h"

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

// What a picture shows: painted over an area of PictureSize times Ratio.
struct Subject {
  std::string Title;
  std::function<void(QPainter& painter)> Paint;
};

bool WriteImage(QIODevice& device, const Subject& subject) {
  QImage image(PictureSize * ImageRatio, QImage::Format_RGB32);
  image.setDotsPerMeterX(PictureDpi * ImageRatio * 10000 / 254);
  image.setDotsPerMeterY(PictureDpi * ImageRatio * 10000 / 254);
  QPainter painter(&image);
  painter.scale(1.0 * ImageRatio / Ratio, 1.0 * ImageRatio / Ratio);
  subject.Paint(painter);
  painter.end();
  return image.save(&device, "PNG");
}

bool WriteSvg(QIODevice& device, const Subject& subject) {
  QSvgGenerator svg;
  svg.setOutputDevice(&device);
  svg.setSize(PictureSize);
  svg.setResolution(PictureDpi);
  svg.setViewBox(QRect(QPoint(0, 0), PictureSize * Ratio));
  svg.setTitle(QString::fromStdString(subject.Title));
  QPainter painter;
  if (!painter.begin(&svg)) return false;
  subject.Paint(painter);
  return painter.end();
}

bool WritePdf(QIODevice& device, const Subject& subject) {
  QPdfWriter pdf(&device);
  pdf.setTitle(QString::fromStdString(subject.Title));
  pdf.setResolution(PictureDpi * Ratio);
  pdf.setPageMargins(QMarginsF());
  pdf.setPageSize(QPageSize(QSizeF(PictureSize) * 72.0 / PictureDpi, QPageSize::Point));
  QPainter painter;
  if (!painter.begin(&pdf)) return false;
  subject.Paint(painter);
  return painter.end();
}

using Writer = bool (*)(QIODevice&, const Subject&);

Writer WriterFor(const QString& ending) {
  if (ending == u"png") return WriteImage;
  if (ending == u"svg") return WriteSvg;
  if (ending == u"pdf") return WritePdf;
  return nullptr;
}

void PaintScope(QPainter& painter, const ZelScope& scope, const ScopeScreen& screen) {
  ScopePainter picture(scope, PaintTime::Unbounded);
  picture.Layout(PictureSize * Ratio, Ratio, MakeScopeLabels(scope, nullptr));
  picture.PaintBackground(painter, ScopeColours::Light());
  picture.PaintTraces(painter, screen);
}

bool Export(const Subject& subject, const std::string& file, std::string& error) {
  const ApplicationForPictures application;
  const QString name = QString::fromStdString(file);
  const Writer write = WriterFor(QFileInfo(name).suffix().toLower());
  if (!write) {
    error = "A picture's name must end in .png, .svg or .pdf: " + file;
    return false;
  }
  QBuffer picture;
  if (!picture.open(QIODevice::WriteOnly) || !write(picture, subject)) {
    error = "Cannot draw " + file;
    return false;
  }
  const QByteArray& bytes = picture.data();
  error = ReplaceFile(file, {bytes.constData(), static_cast<std::size_t>(bytes.size())},
                      Readerless::Wait);
  return error.empty();
}

}  // namespace

bool ExportScopePicture(const ZelScope& scope, const ScopeScreen& screen, const std::string& file,
                        std::string& error) {
  const auto paint = [&](QPainter& painter) { PaintScope(painter, scope, screen); };
  return Export({scope.Name(), paint}, file, error);
}

bool ExportResponsePicture(FrequencyAnalyser& analyser, const std::string& file,
                           std::string& error) {
  const auto paint = [&](QPainter& painter) {
    ResponsePainter picture(analyser);
    picture.Layout(PictureSize * Ratio, Ratio);
    picture.Paint(painter, ScopeColours::Light());
  };
  return Export({analyser.Name(), paint}, file, error);
}

}  // namespace torvane
