#include "core/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>

#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

TEST(TextTest, ReadsWholeFiniteNumbersOnly) {
  EXPECT_EQ(ParseNumber(" +2.5e-3\t"), 2.5e-3);
  EXPECT_EQ(ParseNumber(".5"), 0.5);
  EXPECT_EQ(ParseNumber("-1.7976931348623157e308"), -1.7976931348623157e308);
  for (const char* bad :
       {"", " ", "+", "+-1", "1,5", "1 2", "0x10", "inf", "nan", "1e999", "12V"}) {
    EXPECT_EQ(ParseNumber(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(ParseInteger(" +7 "), 7);
  EXPECT_EQ(ParseInteger("-2147483648"), -2147483647 - 1);
  for (const char* bad : {"", "2.0", "1e3", "2147483648", "7th"}) {
    EXPECT_EQ(ParseInteger(bad), std::nullopt) << bad;
  }
}

TEST(TextTest, SaysWhichTextIsNoNumber) {
  Recorder recorder;
  EXPECT_EQ(ToNumber("1.5"), 1.5);
  EXPECT_EQ(ToInteger("15"), 15);
  EXPECT_EQ(recorder.Take(), Messages{});
  EXPECT_EQ(ToNumber("ten"), std::nullopt);
  EXPECT_EQ(ToInteger("1.5"), std::nullopt);
  EXPECT_EQ(recorder.Take(), (Messages{"Message Box: Cannot convert \"ten\" to a Number",
                                       "Message Box: Cannot convert \"1.5\" to an Integer"}));
}

TEST(TextTest, ShowsFiveDigitsRightAlignedInEight) {
  EXPECT_EQ(FormatG(0.0), "       0");
  EXPECT_EQ(FormatG(-0.012345678), "-0.012346");
  EXPECT_EQ(FormatG(123456.0), "1.2346e+05");
  EXPECT_EQ(FormatG(1e-5), "   1e-05");
  EXPECT_EQ(FormatEdit(0.1 + 0.2), "0.3");
}

TEST(TextTest, GeneralFormTurnsToAnExponentWhereDigitsRunOut) {
  EXPECT_EQ(FormatSteady(-2.1), "-2.1000");
  EXPECT_EQ(FormatSteady(9.99999), "10.000");
  EXPECT_EQ(FormatSteady(1234567.0), "1234567");
  EXPECT_EQ(FormatSteady(-1e-20), "0.0000");
  EXPECT_EQ(FormatSteady(1.5e-7), "1.5000e-07");
  EXPECT_EQ(FormatGeneral(0.0, 6, 2), "0");
  EXPECT_EQ(FormatGeneral(100.0, 6, 2), "100");
  EXPECT_EQ(FormatGeneral(0.0123456789, 6, 2), "0.0123457");
  EXPECT_EQ(FormatGeneral(0.00005, 6, 2), "0.00005");
  EXPECT_EQ(FormatGeneral(1.5e-6, 6, 2), "1.5E-06");
  EXPECT_EQ(FormatGeneral(999999.4, 6, 2), "999999");
  EXPECT_EQ(FormatGeneral(-999999.6, 6, 2), "-1E06");  // rounds up to a seventh digit
  EXPECT_EQ(FormatGeneral(1e120, 6, 2), "1E120");
}

TEST(TextTest, ShortestTextReadsBackAsTheSameNumber) {
  for (const double x : {0.1, 1.0 / 3.0, 6.02214076e23, -5e-324, 1e-5, 123456789012345680.0}) {
    EXPECT_EQ(ParseNumber(FormatShortest(x)), x);
  }
  EXPECT_EQ(FormatShortest(0.00707), "0.00707");
}

/// Punctuation of a language that writes a comma for the decimal point.
class CommaPunctuation : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(TextTest, NumbersDoNotFollowTheLocale) {
  // The C library's locale follows where such a language is installed.
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8"}) std::setlocale(LC_ALL, name);
  const std::locale before = std::locale::global(std::locale(std::locale(), new CommaPunctuation));
  EXPECT_EQ(FormatG(1234.5), "  1234.5");
  EXPECT_EQ(FormatGeneral(1234.5, 6, 2), "1234.5");
  EXPECT_EQ(FormatShortest(1234.5), "1234.5");
  EXPECT_EQ(ParseNumber("1234.5"), 1234.5);
  EXPECT_EQ(ParseNumber("1234,5"), std::nullopt);
  std::locale::global(before);
  std::setlocale(LC_ALL, "C");
}

TEST(TextTest, StripsTheRemarkFromALabel) {
  EXPECT_EQ(StripRemark("Command (volts)"), "Command");
  EXPECT_EQ(StripRemark("Use Inv. PC (x) (y)"), "Use Inv. PC");
  EXPECT_EQ(StripRemark("f(x)"), "f(x)");
  EXPECT_EQ(StripRemark(" (volts)"), " (volts)");  // searched from the second character
  EXPECT_EQ(StripRemark(""), "");
}

TEST(TextTest, SplitsAtRunsOfSeparators) {
  std::vector<std::string> fields;
  EXPECT_EQ(SplitFields(" Scope, 1,,\r\n 2.5 ", fields, 3), 3);
  EXPECT_EQ(fields, (std::vector<std::string>{"Scope", "1", "2.5"}));
  EXPECT_EQ(SplitFields("Scope, 1, 2", fields, 2), -2);
  EXPECT_EQ(SplitFields(" ,\r\n", fields, 2), 0);
  EXPECT_TRUE(fields.empty());
  EXPECT_EQ(AppendLine("Scope, 1"), "Scope, 1\r\n");
}

}  // namespace
}  // namespace torvane
