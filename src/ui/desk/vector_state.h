#pragma once

namespace torvane {

/// Tells the processor that the upper halves of its vector registers are free.
///
/// Painting and system libraries use wide vectors and may leave the upper halves in use. The
/// engines are compiled for every x86-64 processor, without wide vectors; each of their
/// floating-point instructions then has to preserve an upper half, which was measured to make a
/// simulation two to three times slower. Costs a nanosecond; does nothing on other processors.
void ReleaseUpperVectorHalves();

}  // namespace torvane
