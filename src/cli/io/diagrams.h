#pragma once

#include <string>

#include "core/model.h"

namespace torvane::cli {

/// The block diagram of a model as SVG: the one that the program has of a built-in model, or what
/// an own loop's equations give. Throws WorkFault when it cannot be drawn.
std::string DiagramOf(const ZelModel& model);

/// The diagram of an own loop in Graphviz's language DOT, for whoever lays it out himself.
std::string DotOf(const ZelModel& model);

}  // namespace torvane::cli
