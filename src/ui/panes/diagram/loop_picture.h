#pragma once

#include <QString>

namespace torvane {

class ZelModel;

/// Whether a text of the user's own describes the model.
bool IsOwnLoop(const ZelModel& model);

/// The file with an own loop's picture, which stands beside the loop's own or below that folder.
/// Empty when the loop names none, or one elsewhere.
QString LoopPicture(const ZelModel& model);

}  // namespace torvane
