#include "loops/unit.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "core/text.h"
#include "kit/units.h"

namespace torvane::loops {

namespace {

struct Symbol {
  std::string_view Name;
  std::array<int, Unit::Bases> Powers;
  double Size = 1.0;  ///< in base units; angles in radians
  int Angle = 0;
};

//                                   kg  m  s  A  K mol cd
constexpr std::array Symbols{
    Symbol{"1", {0, 0, 0, 0, 0, 0, 0}},
    Symbol{"rad", {0, 0, 0, 0, 0, 0, 0}, 1.0, 1},
    Symbol{"deg", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToDeg, 1},
    Symbol{"Deg", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToDeg, 1},
    Symbol{"rev", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToRevs, 1},
    Symbol{"Revs", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToRevs, 1},
    Symbol{"RPM", {0, 0, -1, 0, 0, 0, 0}, 1.0 / RadToRpm, 1},
    Symbol{"rpm", {0, 0, -1, 0, 0, 0, 0}, 1.0 / RadToRpm, 1},
    Symbol{"%", {0, 0, 0, 0, 0, 0, 0}, 0.01},
    Symbol{"g", {1, 0, 0, 0, 0, 0, 0}, 1e-3},
    Symbol{"t", {1, 0, 0, 0, 0, 0, 0}, 1e3},
    Symbol{"m", {0, 1, 0, 0, 0, 0, 0}},
    Symbol{"l", {0, 3, 0, 0, 0, 0, 0}, 1e-3},
    Symbol{"s", {0, 0, 1, 0, 0, 0, 0}},
    Symbol{"sec", {0, 0, 1, 0, 0, 0, 0}},
    Symbol{"Sec", {0, 0, 1, 0, 0, 0, 0}},
    Symbol{"min", {0, 0, 1, 0, 0, 0, 0}, 60.0},
    Symbol{"h", {0, 0, 1, 0, 0, 0, 0}, 3600.0},
    Symbol{"Hz", {0, 0, -1, 0, 0, 0, 0}, TwoPi, 1},
    Symbol{"A", {0, 0, 0, 1, 0, 0, 0}},
    Symbol{"Amp", {0, 0, 0, 1, 0, 0, 0}},
    Symbol{"Amps", {0, 0, 0, 1, 0, 0, 0}},
    Symbol{"K", {0, 0, 0, 0, 1, 0, 0}},
    Symbol{"degC", {0, 0, 0, 0, 1, 0, 0}},
    Symbol{"mol", {0, 0, 0, 0, 0, 1, 0}},
    Symbol{"cd", {0, 0, 0, 0, 0, 0, 1}},
    Symbol{"N", {1, 1, -2, 0, 0, 0, 0}},
    Symbol{"Nm", {1, 2, -2, 0, 0, 0, 0}},
    Symbol{"Pa", {1, -1, -2, 0, 0, 0, 0}},
    Symbol{"bar", {1, -1, -2, 0, 0, 0, 0}, 1e5},
    Symbol{"J", {1, 2, -2, 0, 0, 0, 0}},
    Symbol{"W", {1, 2, -3, 0, 0, 0, 0}},
    Symbol{"C", {0, 0, 1, 1, 0, 0, 0}},
    Symbol{"V", {1, 2, -3, -1, 0, 0, 0}},
    Symbol{"volts", {1, 2, -3, -1, 0, 0, 0}},
    Symbol{"Ohm", {1, 2, -3, -2, 0, 0, 0}},
    Symbol{"F", {-1, -2, 4, 2, 0, 0, 0}},
    Symbol{"H", {1, 2, -2, -2, 0, 0, 0}},
    Symbol{"Wb", {1, 2, -2, -1, 0, 0, 0}},
    Symbol{"T", {1, 0, -2, -1, 0, 0, 0}},
};

struct Prefix {
  char Letter;
  double Size;
};
constexpr std::array Prefixes{Prefix{'n', 1e-9}, Prefix{'u', 1e-6}, Prefix{'m', 1e-3},
                              Prefix{'c', 1e-2}, Prefix{'d', 1e-1}, Prefix{'k', 1e3},
                              Prefix{'M', 1e6},  Prefix{'G', 1e9}};

Unit UnitOf(const Symbol& symbol, double prefix = 1.0) {
  const double size = symbol.Size * prefix;
  const bool cycles = symbol.Name == "Hz";
  return {symbol.Powers, symbol.Angle, size, cycles ? size / TwoPi : size, false};
}

std::optional<Unit> FindSymbol(std::string_view name) {
  const auto whole = [](std::string_view text, double prefix) -> std::optional<Unit> {
    const auto* const found = std::find_if(Symbols.begin(), Symbols.end(),
                                           [&](const Symbol& s) { return s.Name == text; });
    if (found == Symbols.end()) return {};
    return UnitOf(*found, prefix);
  };
  if (const auto found = whole(name, 1.0)) return found;
  if (name.size() < 2) return {};
  for (const Prefix& prefix : Prefixes) {
    if (name.front() == prefix.Letter) return whole(name.substr(1), prefix.Size);
  }
  return {};
}

bool Same(double a, double b) {
  constexpr double Rounding = 1e-6;
  return std::abs(a - b) <= Rounding * std::abs(b);
}

/// Factors with powers, joined by "." or "-" and "/".
class UnitParser {
 public:
  explicit UnitParser(std::string_view text) : text_(text) {}

  std::optional<Unit> Read() {
    Unit unit;
    int sign = 1;
    while (true) {
      if (!ReadFactor(unit, sign)) return {};
      if (position_ == text_.size()) return unit;
      const char c = text_[position_++];
      if (c == '/') {
        sign = -1;
      } else if (c != '.' && c != '-' && c != '*') {
        return {};
      }
    }
  }

 private:
  bool ReadFactor(Unit& unit, int sign) {
    if (position_ < text_.size() && text_[position_] == '(') {
      const std::size_t end = text_.find(')', position_);
      if (end == std::string_view::npos) return false;
      const auto inside = UnitParser(text_.substr(position_ + 1, end - position_ - 1)).Read();
      position_ = end + 1;
      if (inside) unit = unit.Times(*inside, sign);
      return inside.has_value();
    }
    const std::size_t start = position_;
    while (
        position_ < text_.size() &&
        (std::isalpha(static_cast<unsigned char>(text_[position_])) || text_[position_] == '%')) {
      ++position_;
    }
    if (position_ == start && position_ < text_.size() && text_[position_] == '1') ++position_;
    const auto found = FindSymbol(text_.substr(start, position_ - start));
    if (!found) return false;
    const int power = ReadPower();
    if (power == 0) return false;
    unit = unit.Times(*found, sign * power);
    return true;
  }

  // 1 without any; 0 when there is something else.
  int ReadPower() {
    if (position_ < text_.size() && text_[position_] == '^') ++position_;
    int sign = 1;
    if (position_ + 1 < text_.size() && text_[position_] == '-' && IsDigit(text_[position_ + 1])) {
      sign = -1;
      ++position_;
    }
    if (position_ == text_.size() || !IsDigit(text_[position_])) return 1;
    return sign * (text_[position_++] - '0');
  }

  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

Unit Unit::Times(const Unit& other, int power) const {
  static constexpr int Most = 1000;
  const auto sum = [power](int own, int more) {
    return std::clamp(own + power * more, -Most, Most);
  };
  Unit product = *this;
  for (std::size_t i = 0; i < Bases; ++i) {
    product.Powers.at(i) = sum(Powers.at(i), other.Powers.at(i));
  }
  product.Angle = sum(Angle, other.Angle);
  product.Size *= std::pow(other.Size, power);
  product.Count *= std::pow(other.Count, power);
  product.Celsius = false;
  return product;
}

bool Unit::Fits(const Unit& other) const {
  if (Powers != other.Powers || Celsius != other.Celsius) return false;
  return Angle == other.Angle ? Same(Size, other.Size) : Same(Count, other.Count);
}

namespace {

// "kg.m2/(s.A)" of the base units.
std::string PowersText(const Unit& unit) {
  static constexpr std::array<std::string_view, Unit::Bases> names{"kg", "m",   "s", "A",
                                                                   "K",  "mol", "cd"};
  std::string above;
  std::string below;
  const auto add = [&](std::string_view name, int power) {
    if (power == 0) return;
    std::string& side = power > 0 ? above : below;
    if (!side.empty()) side += '.';
    side += name;
    if (std::abs(power) != 1) side += std::to_string(std::abs(power));
  };
  for (std::size_t i = 0; i < Unit::Bases; ++i) add(names.at(i), unit.Powers.at(i));
  add("rad", unit.Angle);
  if (above.empty()) above += '1';
  if (below.empty()) return above;
  const bool several = below.find('.') != std::string::npos;
  above += several ? "/(" : "/";
  above += below;
  if (several) above += ')';
  return above;
}

}  // namespace

std::string Unit::Text() const {
  if (Celsius) return "degC";
  const auto isThis = [this](const Unit& other) {
    return other.Powers == Powers && other.Angle == Angle && Same(Size, other.Size);
  };
  for (const Symbol& symbol : Symbols) {
    if (isThis(UnitOf(symbol))) return std::string(symbol.Name);
  }
  for (const Symbol& symbol : Symbols) {
    for (const Prefix& prefix : Prefixes) {
      const bool counts = symbol.Powers == std::array<int, Bases>{} && symbol.Angle == 0;
      if (!counts && isThis(UnitOf(symbol, prefix.Size))) {
        std::string name(1, prefix.Letter);
        return name.append(symbol.Name);
      }
    }
  }
  std::string text = Same(Size, 1.0) ? std::string() : FormatGeneral(Size, 6, 1) + ' ';
  return text.append(PowersText(*this));
}

std::optional<Unit> ParseUnit(std::string_view text) {
  std::optional<Unit> unit = UnitParser(text).Read();
  if (unit) unit->Celsius = text == "degC";
  return unit;
}

std::optional<Unit> UnitOfSum(const Unit& left, const Unit& right, bool difference) {
  Unit sum = left;
  sum.Celsius = right.Celsius;
  if (!sum.Fits(right) || (difference && right.Celsius && !left.Celsius)) return {};
  sum.Celsius = difference ? left.Celsius && !right.Celsius : left.Celsius || right.Celsius;
  return sum;
}

std::optional<double> DisplayFactor(std::string_view unit, std::string_view displayUnit) {
  if (unit == displayUnit) return 1.0;
  // As the built-in loops have them, to the bit.
  if (unit == "rad/s" && displayUnit == "RPM") return RadToRpm;
  if (unit == "rad" && displayUnit == "Revs") return RadToRevs;
  if (unit == "rad" && displayUnit == "Deg") return RadToDeg;
  const auto from = ParseUnit(unit);
  const auto to = ParseUnit(displayUnit);
  if (!from || !to || from->Powers != to->Powers || from->Celsius != to->Celsius) return {};
  const bool alike = from->Angle == to->Angle;
  const double factor = alike ? from->Size / to->Size : from->Count / to->Count;
  // How many turns or degrees a count of 1 is nobody knows; it stands for a radian or a cycle.
  const auto decimal = [](double count) {
    const double power = std::log10(count);
    return std::abs(power - std::round(power)) < 1e-9;
  };
  if (!alike && !(decimal(from->Count) && decimal(to->Count))) return {};
  const double whole = std::round(factor);
  return std::abs(factor - whole) < 1e-12 * whole ? whole : factor;
}

}  // namespace torvane::loops
