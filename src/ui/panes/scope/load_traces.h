#pragma once

class QWidget;

namespace torvane {

class ZelScope;

/// Asks for a file of traces that were measured elsewhere and keeps them, as one change, in place
/// of any kept before. What cannot be read is reported and changes nothing.
void LoadTraces(ZelScope& scope, QWidget& window);

}  // namespace torvane
