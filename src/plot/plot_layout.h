#pragma once

namespace torvane {

// What the plots have in common, in pixels of design.
inline constexpr double PlotMargin = 8.0;
inline constexpr double LabelGap = 5.0;
inline constexpr double EntryGap = 18.0;      ///< between two entries of a legend
inline constexpr double SampleLength = 30.0;  ///< of a trace in a legend
inline constexpr double MarkSize = 3.4;       ///< of a memory, from its middle
inline constexpr double MarkDistance = 75.0;  ///< between the marks of a trace

inline constexpr int WidestValueLabel = 5;  ///< of a response, characters
inline constexpr int SmallestPlate = 40;    ///< pixels of the device
inline constexpr double FarOutside = 3e4;  ///< beyond it the line drawing of some devices overflows

}  // namespace torvane
