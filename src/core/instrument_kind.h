#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace torvane {

/// Kinds of instrument, in the order in which a bench serves them, tells them of a broadcast and
/// saves them.
enum class InstrumentKind { Scope, FftAnalyser, SweptSine, Meter, WaveGenerator };

inline constexpr std::array AllInstrumentKinds{InstrumentKind::Scope, InstrumentKind::FftAnalyser,
                                               InstrumentKind::SweptSine, InstrumentKind::Meter,
                                               InstrumentKind::WaveGenerator};

/// Those that ask for times and are served then: all but the generators, which the solver drives.
inline constexpr std::span ServicedKinds = std::span(AllInstrumentKinds).first<4>();
static_assert(AllInstrumentKinds[4] == InstrumentKind::WaveGenerator);

/// Position of the kind in AllInstrumentKinds.
constexpr std::size_t IndexOf(InstrumentKind kind) {
  return static_cast<std::size_t>(kind);
}

/// First field of the records of instruments of the kind. A new kind does not compile until it has
/// one here.
constexpr std::string_view RecordKeyword(InstrumentKind kind) {
  switch (kind) {
    case InstrumentKind::Scope:
      return "Scope";
    case InstrumentKind::FftAnalyser:
      return "Xfer";
    case InstrumentKind::SweptSine:
      return "SweptDSA";
    case InstrumentKind::Meter:
      return "Meter";
    case InstrumentKind::WaveGenerator:
      return "WaveGen";
  }
  return {};
}

}  // namespace torvane
