#include "loops/unit.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane::loops {
namespace {

struct Definition {
  const char* Name;
  double Size;  // of it, in what it is defined by
  const char* By;
};

// As the international system defines them; degC, rad and the base units stand for themselves.
constexpr Definition Definitions[] = {
    {"g", 1e-3, "kg"},  {"t", 1e3, "kg"},    {"l", 1e-3, "m^3"},  {"min", 60, "s"},
    {"h", 3600, "s"},   {"sec", 1, "s"},     {"Sec", 1, "s"},     {"Amp", 1, "A"},
    {"Amps", 1, "A"},   {"N", 1, "kg.m/s2"}, {"Nm", 1, "N.m"},    {"Pa", 1, "N/m2"},
    {"bar", 1e5, "Pa"}, {"J", 1, "N.m"},     {"W", 1, "J/s"},     {"C", 1, "A.s"},
    {"V", 1, "W/A"},    {"volts", 1, "W/A"}, {"Ohm", 1, "V/A"},   {"F", 1, "C/V"},
    {"H", 1, "V.s/A"},  {"Wb", 1, "V.s"},    {"T", 1, "Wb/m2"},   {"%", 0.01, "1"},
    {"nm", 1e-9, "m"},  {"uF", 1e-6, "C/V"}, {"mA", 1e-3, "C/s"}, {"cm", 1e-2, "m"},
    {"dm3", 1, "l"},    {"kN", 1e3, "J/m"},  {"MW", 1e6, "V.A"},  {"GHz", 1e9, "Hz"},
};

TEST(UnitTest, IsWhatItIsDefinedBy) {
  for (const auto& [name, size, by] : Definitions) {
    const auto unit = ParseUnit(name);
    const auto defined = ParseUnit(by);
    ASSERT_TRUE(unit && defined) << name;
    EXPECT_EQ(unit->Powers, defined->Powers) << name;
    EXPECT_EQ(unit->Angle, defined->Angle) << name;
    EXPECT_NEAR(unit->Size / defined->Size / size, 1.0, 1e-12) << name;  // rounding
    EXPECT_NEAR(*DisplayFactor(name, by) / size, 1.0, 1e-12) << name;
    EXPECT_EQ(unit->Fits(*defined), size == 1.0) << name;
  }
  const char* const bases[] = {"kg", "m", "s", "A", "K", "mol", "cd"};
  for (std::size_t i = 0; i < Unit::Bases; ++i) {
    Unit base;
    base.Powers.at(i) = 1;
    EXPECT_EQ(ParseUnit(bases[i])->Powers, base.Powers) << bases[i];
    EXPECT_EQ(base.Text(), bases[i]);
  }
}

TEST(UnitTest, CountsAnglesOrNot) {
  const auto factor = [](const char* from, const char* to) {
    return DisplayFactor(from, to).value_or(NAN);
  };
  constexpr double rounding = 1e-12;
  EXPECT_NEAR(factor("rev", "deg"), 360.0, 360 * rounding);
  EXPECT_NEAR(factor("Revs", "Deg"), 360.0, 360 * rounding);
  EXPECT_NEAR(factor("Hz", "rpm"), 60.0, 60 * rounding);
  constexpr double digits = 1e-7;  // that the loops' own factor for rpm is told with
  EXPECT_NEAR(factor("RPM", "rad/s"), std::acos(-1.0) / 30.0, digits);
  EXPECT_EQ(factor("1/s", "Hz"), 1.0);
  EXPECT_EQ(factor("1/ms", "kHz"), 1.0);
  EXPECT_EQ(factor("1/s", "rad/s"), 1.0);
  EXPECT_FALSE(DisplayFactor("1/s", "rpm")) << "how many turns a count is nobody knows";
  EXPECT_FALSE(DisplayFactor("m", "s"));
  EXPECT_FALSE(DisplayFactor("K", "degC"));
  EXPECT_FALSE(ParseUnit("Hz")->Fits(*ParseUnit("rad/s")));
  EXPECT_TRUE(ParseUnit("Hz")->Fits(*ParseUnit("1/s")));
  EXPECT_TRUE(ParseUnit("rad/s")->Fits(*ParseUnit("1/s")));
}

TEST(UnitTest, IsToldAsOneWritesIt) {
  const char* const told[][2] = {
      {"V/A", "Ohm"},
      {"A.s/V", "F"},
      {"1e-3", ""},
      {"N.mm", "mNm"},
      {"V/K", "kg.m2/(s3.A.K)"},
      {"1/s/s", "1/s2"},
      {"A/(m.s)", "A/(m.s)"},
      {"rad/s2", "rad/s2"},
      {"V-s^2", "kg.m2/(s.A)"},
      {"m^-1", "1/m"},
      {"m/(s", ""},
      {"m+s", ""},
      {"xs", ""},
      {"m^0", ""},
      {"degC", "degC"},
      {"1/m.kg", "1/(kg.m)"},
  };
  for (const auto& [text, expected] : told) {
    const auto unit = ParseUnit(text);
    const std::string answer = unit ? unit->Text() : "";
    EXPECT_EQ(answer, expected) << text;
  }
}

TEST(UnitTest, KeepsTemperaturesFromTheIcePointApart) {
  const Unit kelvin = *ParseUnit("K");
  const Unit celsius = *ParseUnit("degC");
  EXPECT_EQ(UnitOfSum(celsius, celsius, true), kelvin);
  EXPECT_EQ(UnitOfSum(celsius, kelvin, true), celsius);
  EXPECT_EQ(UnitOfSum(celsius, kelvin, false), celsius);
  EXPECT_EQ(UnitOfSum(kelvin, celsius, false), celsius);
  EXPECT_EQ(UnitOfSum(kelvin, kelvin, true), kelvin);
  EXPECT_FALSE(UnitOfSum(kelvin, celsius, true));
  EXPECT_FALSE(UnitOfSum(celsius, *ParseUnit("s"), false));
}

}  // namespace
}  // namespace torvane::loops
