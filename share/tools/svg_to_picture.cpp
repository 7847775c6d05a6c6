// Build-time tool: svg_to_picture IN.svg OUT [WIDTH] paints a drawing WIDTH pixels wide (default
// 1280). OUT is a BMP, painted on white as the program's picture window would, or an icon as PNG.

#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QSize>
#include <QString>
#include <QSvgRenderer>
#include <algorithm>
#include <cstdio>

namespace {

/// The 256 most frequent colours. A drawing has few; only the blends on its edges are more, and for
/// those the nearest is as good to the eye. One byte a pixel keeps the pictures small.
QList<QRgb> Palette(const QImage& picture) {
  QHash<QRgb, int> counts;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
  }
  QList<QRgb> colours = counts.keys();
  // Equal counts are ordered by colour, so that the same drawing always gives the same bytes.
  std::sort(colours.begin(), colours.end(),
            [&](QRgb a, QRgb b) { return counts[a] != counts[b] ? counts[a] > counts[b] : a < b; });
  colours.resize(std::min<qsizetype>(colours.size(), 256));
  return colours;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // A build has no use for the advice that Qt gives to desktop sessions (a missing runtime folder).
  qputenv("QT_LOGGING_RULES", "default.warning=false");
  const QGuiApplication application(argc, argv);  // fonts need it
  const QStringList arguments = QGuiApplication::arguments();
  if (arguments.size() < 3) {
    std::fputs("usage: svg_to_picture IN.svg OUT.bmp|OUT.png [WIDTH]\n", stderr);
    return 2;
  }
  // Without one a drawing comes out without a word, or as rows of boxes.
  if (QFontDatabase::families().isEmpty()) {
    std::fputs("svg_to_picture: no fonts are installed; the drawings want DejaVu Sans\n", stderr);
    return 1;
  }
  QSvgRenderer renderer(arguments[1]);
  if (!renderer.isValid()) {
    std::fprintf(stderr, "svg_to_picture: cannot read %s\n", qPrintable(arguments[1]));
    return 1;
  }
  const int width = arguments.size() > 3 ? arguments[3].toInt() : 1280;
  const QSize size = renderer.defaultSize();
  if (width <= 0 || size.isEmpty()) {
    std::fprintf(stderr, "svg_to_picture: no size for %s\n", qPrintable(arguments[1]));
    return 1;
  }
  const bool icon = arguments[2].endsWith(QStringLiteral(".png"));
  QImage picture(width, width * size.height() / size.width(),
                 icon ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  picture.fill(icon ? Qt::transparent : Qt::white);
  QPainter painter(&picture);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  renderer.render(&painter);
  painter.end();
  if (!icon) {
    picture =
        picture.convertToFormat(QImage::Format_Indexed8, Palette(picture), Qt::ThresholdDither);
  }
  if (!picture.save(arguments[2])) {
    std::fprintf(stderr, "svg_to_picture: cannot write %s\n", qPrintable(arguments[2]));
    return 1;
  }
  return 0;
}
