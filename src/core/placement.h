#pragma once

namespace torvane {

/// How a window stands.
enum class WindowState { Normal, Minimised, Maximised };

/// Where an instrument's window stands in the workspace, in pixels. Sizes of 0 mean that the
/// window chooses for itself.
struct WindowPlacement {
  WindowState State = WindowState::Normal;
  int Height = 0;
  int Left = 0;
  int Top = 0;
  int Width = 0;

  bool operator==(const WindowPlacement&) const = default;
};

}  // namespace torvane
