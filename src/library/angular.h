#pragma once

namespace torvane {

// Every frequency a user enters is in Hz; the blocks turn it into rad/s with eight digits of pi.
// The sampled blocks carry 2 pi as one number, the continuous blocks and the sources double pi.
inline constexpr double Pi = 3.1415926;
inline constexpr double TwoPi = 6.2831852;

}  // namespace torvane
