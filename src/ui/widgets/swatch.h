#pragma once

#include <QColor>
#include <QIcon>
#include <optional>

namespace torvane {

/// A square in the colour of a trace, for lists and check boxes; without a colour an empty place of
/// the same size.
QIcon Swatch(const std::optional<QColor>& colour);

}  // namespace torvane
