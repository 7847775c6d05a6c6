#pragma once

#include <array>
#include <cstddef>

namespace torvane {

/// What a meter measures.
enum class MeterKind { Rms, Average, Harmonic, Correlation };

/// What a kind of measurement is called in model files, for the user and on the command line.
struct MeterKindNames {
  const char* Keyword;
  const char* Caption;
  const char* Option;
};

/// By kind.
inline constexpr std::array<MeterKindNames, 4> MeterKinds{{
    {"RMS", "RMS", "rms"},
    {"Average", "Average", "average"},
    {"Harmonic", "Harmonic", "harmonic"},
    {"Corr", "Correlation", "correlation"},
}};

/// The names of a kind.
constexpr const MeterKindNames& NamesOf(MeterKind kind) {
  return MeterKinds[static_cast<std::size_t>(kind)];
}

}  // namespace torvane
