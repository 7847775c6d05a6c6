#pragma once

#include <string>

#include "core/text.h"

namespace torvane {

/// What undo calls a change: the setting's name and what it was set to.
inline std::string SettingCaption(const std::string& name, const std::string& value) {
  return name + " = " + value;
}
/// As the edit of a number shows it.
inline std::string SettingCaption(const std::string& name, double value) {
  return SettingCaption(name, FormatEdit(value));
}
/// Of a whole number.
inline std::string SettingCaption(const std::string& name, int value) {
  return SettingCaption(name, std::to_string(value));
}
/// Of a switch.
inline std::string SettingCaption(const std::string& name, bool on) {
  return SettingCaption(name, std::string(on ? "on" : "off"));
}

}  // namespace torvane
