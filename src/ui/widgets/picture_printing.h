#pragma once

#include "plot/picture_page.h"

class QWidget;

namespace torvane {

/// Asks by the system's dialog where to print the page of a plot, prints it, and says so at the
/// plot. A document that is printed to a file is written whole or not at all; a failure is reported
/// with the reason.
void PrintPicture(QWidget& plot, const PicturePage& page);

}  // namespace torvane
