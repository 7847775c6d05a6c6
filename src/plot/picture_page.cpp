#include "plot/picture_page.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>

#include "plot/picture_fonts.h"

namespace torvane {

namespace {

constexpr double DesignDpi = 96.0;
constexpr double HeadingShare = 1.25;  // of the text's size
constexpr double Gap = 12.0;           // between heading and picture, pixels of design
constexpr double Proportion = 1.5;     // a picture is no taller than its width divided by this

}  // namespace

bool PrintPage(QPagedPaintDevice& device, const PicturePage& page, int resolution) {
  QPainter painter;
  if (!painter.begin(&device)) return false;
  const double ratio = resolution / DesignDpi;
  const QSize sheet = painter.viewport().size();
  painter.setFont(ScaledFont(QGuiApplication::font(), ratio, 1.0));
  const int dateWidth = painter.fontMetrics().horizontalAdvance(page.Date);
  QFont bold = ScaledFont(QGuiApplication::font(), ratio, HeadingShare);
  bold.setBold(true);
  const QFontMetrics heading(bold);
  const QRect line(0, 0, sheet.width(), heading.height());
  painter.drawText(line, Qt::AlignRight | Qt::AlignBottom, page.Date);
  painter.setFont(bold);
  const int gap = qRound(Gap * ratio);
  painter.drawText(
      line, Qt::AlignLeft | Qt::AlignBottom,
      heading.elidedText(page.Heading, Qt::ElideRight, line.width() - dateWidth - gap));
  painter.translate(0, line.height() + gap);
  const int height =
      std::min(sheet.height() - line.height() - gap, qRound(sheet.width() / Proportion));
  page.Content.Paint(painter, QSize(sheet.width(), height), ratio);
  return painter.end();
}

}  // namespace torvane
