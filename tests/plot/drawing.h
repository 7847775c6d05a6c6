#pragma once

#include <QPaintEngine>
#include <QPainter>
#include <functional>
#include <string>
#include <vector>

namespace torvane::test {

/// Paints on a device that writes down each shape, a line each: what it is, through which points,
/// with which pen and on which ground; of a text where its baseline begins. Lengths are whole
/// pixels. A painter treats the device as one of `type`: of pixels, or of a file with lines.
std::vector<std::string> Drawn(const std::function<void(QPainter&)>& paint,
                               QPaintEngine::Type type = QPaintEngine::User);

}  // namespace torvane::test
