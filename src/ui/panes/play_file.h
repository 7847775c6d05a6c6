#pragma once

class QWidget;

namespace torvane {

class ZelWave;

/// Asks for a file of time and values, and of several columns for one of them, and has the
/// generator play it. What cannot be read is reported and changes nothing.
void PlayFile(ZelWave& wave, QWidget& window);

}  // namespace torvane
