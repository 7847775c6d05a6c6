#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace torvane::loops {

/// What a number measures, and in which size: powers of the base units kg, m, s, A, K, mol and cd,
/// and of the angle, which counts or not as a user likes: 1/s fits both rad/s and Hz, which do not
/// fit each other.
struct Unit {
  static constexpr std::size_t Bases = 7;
  std::array<int, Bases> Powers{};
  int Angle = 0;
  double Size = 1.0;     ///< in base units; a cycle is 2 pi radians
  double Count = 1.0;    ///< the same with a cycle for 1
  bool Celsius = false;  ///< a temperature that is counted from the ice point

  bool operator==(const Unit&) const = default;
  Unit Times(const Unit& other, int power = 1) const;
  /// Values in the two units can be compared, and each set where the other is asked for.
  bool Fits(const Unit& other) const;
  /// The common name, "V", or powers of base units with their size, "0.001 kg.m2/s2"; "1" without
  /// any.
  std::string Text() const;
};

/// What a text such as "N.m", "kg-m^2", "V/A" or "1/s" stands for; nothing when a part of it is not
/// known.
std::optional<Unit> ParseUnit(std::string_view text);

/// Of a sum or difference: degC less degC is K, and K can be added to degC. Nothing when the two do
/// not fit.
std::optional<Unit> UnitOfSum(const Unit& left, const Unit& right, bool difference);

/// By how much a value in `unit` is to be multiplied to be shown in `displayUnit`; nothing when no
/// factor does that.
std::optional<double> DisplayFactor(std::string_view unit, std::string_view displayUnit);

}  // namespace torvane::loops
