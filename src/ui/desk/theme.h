#pragma once

namespace torvane {

/// Light and dark: the desktop's own choice, or one of the two whatever that is.
enum class Theme { System, Light, Dark };

/// All windows of the application take the theme at once. Before the message loop runs only windows
/// that are made later do.
void ApplyTheme(Theme theme);

/// The user's choice, from one start to the next.
Theme RememberedTheme();
void RememberTheme(Theme theme);

}  // namespace torvane
