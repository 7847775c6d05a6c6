#pragma once

#include "instruments/recorded_run.h"
#include "plot/picture.h"

namespace torvane {

/// The signals of a run on time, in strips below each other: those that share an axis, with their
/// unit and a legend, as StripsOf has them.
Picture RunPicture(RecordedRun run);

}  // namespace torvane
