#pragma once

namespace torvane {

// Every frequency a user enters is in Hz; it is turned into rad/s with eight digits of pi.
inline constexpr double Pi = 3.1415926;
inline constexpr double TwoPi = 6.2831852;

}  // namespace torvane
