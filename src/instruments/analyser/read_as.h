#pragma once

#include <array>

namespace torvane {

/// What a response is taken for when it is read.
enum class ReadAs {
  Auto,    ///< closed if it begins at unity or goes there towards low frequencies, else open
  Open,    ///< an open loop
  Closed,  ///< a closed loop
  Unity,   ///< a closed loop whose feedback is its output: the open loop that belongs to it
};

/// As a user writes them, in that order.
inline constexpr std::array ReadAsNames{"auto", "open", "closed", "unity"};

}  // namespace torvane
