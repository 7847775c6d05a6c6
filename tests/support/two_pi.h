#pragma once

namespace torvane::test {

/// As blocks and instruments have it.
inline constexpr double TwoPi = 6.2831852;

}  // namespace torvane::test
