#pragma once

#include <QImage>
#include <string>

#include "core/files/atomic_save.h"
#include "plot/picture.h"

namespace torvane {

/// Writes a picture file, whose kind follows from the file name's ending: png, svg or pdf. The
/// result is empty, or says in one line what went wrong; the old file stays then. Makes an
/// application object without a display when the program has none.
std::string ExportPicture(const Picture& picture, const std::string& file,
                          Readerless pipes = Readerless::Refuse);

/// The picture as in a png file.
QImage PictureImage(const Picture& picture);

}  // namespace torvane
