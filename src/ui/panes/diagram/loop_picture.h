#pragma once

#include <QString>

#include "plot/diagram/loop_diagram.h"

namespace torvane {

/// Whether a text of the user's own describes the model.
bool IsOwnLoop(const ZelModel& model);

/// The file with an own loop's picture, which stands beside the loop's own or below that folder.
/// Empty when the loop names none, or one elsewhere.
QString LoopPicture(const ZelModel& model);

/// Whether the model's drawing is made from its equations: an own loop's that names no picture.
bool IsLaidOut(const ZelModel& model);

/// The drawing in which values stand, of another model: the built-in one's, or that in the file
/// which an own loop names.
DrawnModel LivingDrawing(const ZelModel& model);

}  // namespace torvane
