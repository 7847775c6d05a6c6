#pragma once

#include "plot/picture.h"
#include "study/study_pictures.h"

namespace torvane {

/// Every response thin and the chosen one thick. The few that run far away from all others leave
/// the picture.
Picture StudyResponsesPicture(StudyResponses responses);

/// A measure over two settings, the darker the lower, with the numbers beside a scale and, where
/// there is room, in the map: cells of a whole grid, dots of any other runs. What could not be
/// measured is hatched, or a ring; what does not meet what is required is pale, and a line parts
/// the cells that do. Slices stand beside each other with the same colours.
Picture StudyMapPicture(StudyMap map);

}  // namespace torvane
