#pragma once

namespace torvane {

class ZelBenchTop;

/// Leaves nothing that moves a model's command: its generators stand at their offsets, and its
/// meters excite nothing.
void RestSources(const ZelBenchTop& bench);

}  // namespace torvane
