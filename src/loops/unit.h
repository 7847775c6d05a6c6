#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace torvane::loops {

/// Powers of the base units kg, m, s, A, K, mol and cd; angles and counts have none. What has the
/// same powers can be added and compared, whatever its size.
struct Unit {
  static constexpr std::size_t Bases = 7;
  std::array<int, Bases> Powers{};

  bool operator==(const Unit&) const = default;
  Unit Times(const Unit& other, int power = 1) const;
  /// As users write it, "kg.m2/s2"; "1" without any base.
  std::string Text() const;
};

/// What a text such as "N.m", "kg-m^2", "V/A" or "1/s" stands for; nothing when a part of it is not
/// known.
std::optional<Unit> ParseUnit(std::string_view text);

/// By how much a value in `unit` is to be multiplied to be shown in `displayUnit`; nothing when the
/// two are not known to measure the same.
std::optional<double> DisplayFactor(std::string_view unit, std::string_view displayUnit);

}  // namespace torvane::loops
