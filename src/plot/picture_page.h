#pragma once

#include <QPagedPaintDevice>
#include <QString>

#include "plot/picture.h"

namespace torvane {

/// A picture on a sheet of paper, below a line that says what it is and when it was made.
struct PicturePage {
  Picture Content;
  QString Heading;
  QString Date;
};

/// Paints the page over the whole sheet of a printer or a document; false when that takes nothing.
/// `resolution` is the device's, in dots an inch.
bool PrintPage(QPagedPaintDevice& device, const PicturePage& page, int resolution);

}  // namespace torvane
