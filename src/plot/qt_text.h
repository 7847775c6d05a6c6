#pragma once

#include <QString>
#include <string>

namespace torvane {

/// An engine's text as Qt's.
inline QString QtText(const std::string& text) {
  return QString::fromStdString(text);
}

}  // namespace torvane
