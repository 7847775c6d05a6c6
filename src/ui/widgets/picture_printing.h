#pragma once

#include "plot/picture_page.h"

class QWidget;

namespace torvane {

/// Asks by the system's dialog where to print the page, and prints it. A document that is printed
/// to a file is written whole or not at all; a failure is reported with the reason.
void PrintPicture(QWidget& parent, const PicturePage& page);

}  // namespace torvane
