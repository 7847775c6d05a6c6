#include "core/text.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cmath>
#include <locale>

#include "core/csv.h"
#include "core/csv_table.h"

namespace torvane {
namespace {

TEST(Text, ReadsWholeFiniteNumbersOnly) {
  EXPECT_EQ(ParseNumber(" +2.5e-3\t"), 2.5e-3);
  EXPECT_EQ(ParseNumber(".5"), 0.5);
  EXPECT_EQ(ParseNumber("-1.7976931348623157e308"), -1.7976931348623157e308);
  for (const char* bad :
       {"", " ", "+", "+-1", "1,5", "1 2", "0x10", "inf", "nan", "1e999", "12V"}) {
    EXPECT_EQ(ParseNumber(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(ParseInteger(" +7 "), 7);
  EXPECT_EQ(ParseInteger("+0"), 0);
  EXPECT_EQ(ParseInteger("-2147483648"), -2147483647 - 1);
  for (const char* bad : {"", "2.0", "1e3", "2147483648", "7th"}) {
    EXPECT_EQ(ParseInteger(bad), std::nullopt) << bad;
  }
}

TEST(Text, ShowsNumbersInTheFormOfTheirPlace) {
  // The general form has six digits, and two of the exponent at least. 9.99999 and 999999.6 round
  // up to another digit before the point, 0.001 is the least without an exponent, and -1e-20 is a
  // steady reading's zero.
  const struct {
    double Number;
    const char *Edit, *Steady, *General;
  } cases[] = {{0.0, "0", "0.0000", "0"},
               {-0.0, "0", "0.0000", "-0"},
               {100.0, "100", "100.00", "100"},
               {0.1 + 0.2, "0.3", "0.30000", "0.3"},
               {-2.1, "-2.1", "-2.1000", "-2.1"},
               {-0.012345678, "-0.012346", "-0.012346", "-0.0123457"},
               {9.99999, "10", "10.000", "9.99999"},
               {0.001, "0.001", "0.0010000", "0.001"},
               {0.00099, "0.00099", "9.9000e-04", "0.00099"},
               {0.00001, "1e-05", "1.0000e-05", "0.00001"},
               {0.0000099, "9.9e-06", "9.9000e-06", "9.9E-06"},
               {-1e-20, "-1e-20", "0.0000", "-1E-20"},
               {1.1e-12, "1.1e-12", "1.1000e-12", "1.1E-12"},
               {999999.4, "1e+06", "999999", "999999"},
               {-999999.6, "-1e+06", "-1000000", "-1E06"},
               {1234567.0, "1.2346e+06", "1234567", "1.23457E06"},
               {12345678.0, "1.2346e+07", "1.2346e+07", "1.23457E07"},
               {1e120, "1e+120", "1.0000e+120", "1E120"},
               {HUGE_VAL, "inf", "inf", "inf"}};
  for (const auto& [number, edit, steady, general] : cases) {
    EXPECT_EQ(FormatEdit(number), edit);
    EXPECT_EQ(FormatSteady(number), steady);
    EXPECT_EQ(FormatGeneral(number, 6, 2), general);
  }
  EXPECT_EQ(FormatG(-0.5), "    -0.5");
  EXPECT_EQ(FormatG(12345.6), "   12346");
  EXPECT_EQ(FormatG(-0.012345678), "-0.012346");
}

TEST(Text, ShortestTextReadsBackAsTheSameNumber) {
  for (const double x : {0.1, 1.0 / 3.0, 6.02214076e23, -5e-324, 1e-5, 123456789012345680.0}) {
    EXPECT_EQ(ParseNumber(FormatShortest(x)), x);
  }
  EXPECT_EQ(FormatShortest(0.00707), "0.00707");
  EXPECT_EQ(FormatShortestSingle(0.1F), "0.1");
  EXPECT_EQ(CsvLine(std::array{0.1, -0.0, 1e-5, 100000.0}), "0.1,-0,1e-05,1e+05\n");
}

TEST(Text, NumbersDoNotFollowTheLocale) {
  struct CommaPunctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
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

TEST(Text, LinesAreTakenApartAndPutTogether) {
  EXPECT_EQ(StripRemark("Command (volts)"), "Command");
  EXPECT_EQ(StripRemark("Use Inv. PC (x) (y)"), "Use Inv. PC");
  EXPECT_EQ(StripRemark("f(x)"), "f(x)");
  EXPECT_EQ(StripRemark(" (volts)"), " (volts)");  // searched from the second character
  std::vector<std::string> fields;
  EXPECT_EQ(SplitFields(" Scope, 1,,\r\n 2.5 ", fields, 3), 3);
  EXPECT_EQ(fields, (std::vector<std::string>{"Scope", "1", "2.5"}));
  EXPECT_EQ(SplitFields("Scope, 1, 2", fields, 2), -2);
  EXPECT_EQ(SplitFields(" ,\r\n", fields, 2), 0);
  EXPECT_TRUE(fields.empty());
  EXPECT_EQ(AppendLine("Scope, 1"), "Scope, 1\r\n");
  // Quotes only around what would not read back.
  fields = {"a b", "1;2", "x,y", "say \"hi\"", "two\nlines", ""};
  const std::string line = CsvLine(fields);
  EXPECT_EQ(line, "a b,1;2,\"x,y\",\"say \"\"hi\"\"\",\"two\nlines\",\n");
  EXPECT_EQ(ParseCsv(line).at(0).Fields, fields);
  std::string sheet;  // as spreadsheets and hands write them
  for (const CsvRow& row : ParseCsv("\xef\xbb\xbf a b , \" c\" x,\r\n\n\"\"\n,1,\"2\n3\"\n 4\t")) {
    sheet += std::to_string(row.Line);
    for (const std::string& field : row.Fields) sheet += '|' + field;
  }
  EXPECT_EQ(sheet, "1|a b| c|3|4||1|2\n36|4");
  for (const char* endless : {"1,", " ", "\"1", "1"}) {
    std::string text = "a\n";
    while (text.size() < MaxCsvRowLength + 3) text += endless;
    const std::vector<CsvRow> rows = ParseCsv(text + "\nb\n");
    ASSERT_EQ(rows.size(), 2U) << endless;
    EXPECT_FALSE(rows[1].Whole) << endless;
  }
}

}  // namespace
}  // namespace torvane
