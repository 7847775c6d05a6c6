#include "loops/unit.h"

#include <algorithm>
#include <cctype>
#include <span>

#include "kit/units.h"

namespace torvane::loops {

namespace {

struct Symbol {
  std::string_view Name;
  std::array<int, Unit::Bases> Powers;
  double Size = 1.0;  ///< in base units; angles in radians
};

//                                   kg  m  s  A  K mol cd
constexpr std::array Symbols{
    Symbol{"1", {0, 0, 0, 0, 0, 0, 0}},
    Symbol{"rad", {0, 0, 0, 0, 0, 0, 0}},
    Symbol{"deg", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToDeg},
    Symbol{"Deg", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToDeg},
    Symbol{"rev", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToRevs},
    Symbol{"Revs", {0, 0, 0, 0, 0, 0, 0}, 1.0 / RadToRevs},
    Symbol{"RPM", {0, 0, -1, 0, 0, 0, 0}, 1.0 / RadToRpm},
    Symbol{"rpm", {0, 0, -1, 0, 0, 0, 0}, 1.0 / RadToRpm},
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
    Symbol{"Hz", {0, 0, -1, 0, 0, 0, 0}},
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

struct Sized {
  Unit Powers;
  double Size = 1.0;
};

std::optional<Sized> FindSymbol(std::string_view name) {
  const auto whole = [](std::string_view text) -> std::optional<Sized> {
    const auto* const found = std::find_if(Symbols.begin(), Symbols.end(),
                                           [&](const Symbol& s) { return s.Name == text; });
    if (found == Symbols.end()) return {};
    return Sized{{found->Powers}, found->Size};
  };
  if (const auto found = whole(name)) return found;
  if (name.size() < 2) return {};
  for (const Prefix& prefix : Prefixes) {
    if (name.front() != prefix.Letter) continue;
    std::optional<Sized> found = whole(name.substr(1));
    if (found) found->Size *= prefix.Size;
    return found;
  }
  return {};
}

/// Factors with powers, joined by "." or "-" and "/".
class UnitParser {
 public:
  explicit UnitParser(std::string_view text) : text_(text) {}

  std::optional<Sized> Read() {
    Sized unit;
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
  bool ReadFactor(Sized& unit, int sign) {
    if (position_ < text_.size() && text_[position_] == '(') {
      const std::size_t end = text_.find(')', position_);
      if (end == std::string_view::npos) return false;
      const auto inside = UnitParser(text_.substr(position_ + 1, end - position_ - 1)).Read();
      position_ = end + 1;
      if (inside) Take(unit, *inside, sign);
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
    Take(unit, *found, sign * power);
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

  static void Take(Sized& unit, const Sized& factor, int power) {
    unit.Powers = unit.Powers.Times(factor.Powers, power);
    for (int i = 0; i < power; ++i) unit.Size *= factor.Size;
    for (int i = 0; i > power; --i) unit.Size /= factor.Size;
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

Unit Unit::Times(const Unit& other, int power) const {
  Unit product = *this;
  for (std::size_t i = 0; i < Bases; ++i) {
    int& own = product.Powers.at(i);
    own = std::clamp(own + power * other.Powers.at(i), -1000, 1000);
  }
  return product;
}

std::string Unit::Text() const {
  static constexpr std::array<std::string_view, Bases> names{"kg", "m", "s", "A", "K", "mol", "cd"};
  std::string above;
  std::string below;
  for (std::size_t i = 0; i < Bases; ++i) {
    const int power = Powers.at(i);
    if (power == 0) continue;
    std::string& side = power > 0 ? above : below;
    if (!side.empty()) side += '.';
    side += names.at(i);
    if (std::abs(power) != 1) side += std::to_string(std::abs(power));
  }
  if (above.empty()) above += '1';
  if (below.empty()) return above;
  above += '/';
  const bool several = below.find('.') != std::string::npos;
  if (several) above += '(';
  above += below;
  if (several) above += ')';
  return above;
}

std::optional<Unit> ParseUnit(std::string_view text) {
  const auto unit = UnitParser(text).Read();
  if (!unit) return {};
  return unit->Powers;
}

std::optional<double> DisplayFactor(std::string_view unit, std::string_view displayUnit) {
  if (unit == displayUnit) return 1.0;
  // As the built-in loops have them, to the bit.
  if (unit == "rad/s" && displayUnit == "RPM") return RadToRpm;
  if (unit == "rad" && displayUnit == "Revs") return RadToRevs;
  if (unit == "rad" && displayUnit == "Deg") return RadToDeg;
  const auto from = UnitParser(unit).Read();
  const auto to = UnitParser(displayUnit).Read();
  if (!from || !to || from->Powers != to->Powers) return {};
  return from->Size / to->Size;
}

}  // namespace torvane::loops
