#pragma once

class QObject;

namespace torvane {

/// Keeps a turn of the wheel, as long as the owner lives, from changing a list or a slider that
/// does not have the focus: what was meant to scroll must not alter a setting.
void GuardAgainstWheel(QObject& owner);

}  // namespace torvane
