#pragma once

#include <functional>

class QObject;

namespace torvane {

/// Gives every control of the program the sentence that the table of help texts has for it, and
/// shows it as long as the owner lives: of the control that has the focus on F1, of any other after
/// the action for that. What F1 does where no control with a sentence has the focus and no box is
/// open is given.
void HelpWithControls(QObject& owner, std::function<void()> otherwise);

}  // namespace torvane
