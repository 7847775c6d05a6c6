#include "core/table_lines.h"

#include <gtest/gtest.h>

#include "core/names.h"

namespace torvane {
namespace {

TEST(TableLines, AreDividedOutsideOfQuotes) {
  const struct {
    const char* Line;
    char Separator;
    TableFields Fields;
  } cases[] = {
      {"a;\"b;c\";d", ';', {"a", "b;c", "d"}},
      {"\"a;b\",c", ',', {"a;b", "c"}},
      {"\"a;b\",\"c\td\"", ',', {"a;b", "c\td"}},
      {"a,b;c", ';', {"a,b", "c"}},
      {"a\t\tb,c", '\t', {"a", "", "b,c"}},
      {"  1   2 3 ", ' ', {"1", "2", "3"}},
      {"\"Time (s)\"  \"vF (V)\"", ' ', {"Time (s)", "vF (V)"}},
      {"5\" disk;b", ';', {"5\" disk", "b"}},
      {"a,b,", ',', {"a", "b", ""}},
      {"1,2,3,4,5", ',', {"1", "2", "3", "4"}},
  };
  for (const auto& [line, separator, fields] : cases) {
    EXPECT_EQ(TableSeparator(line), separator) << line;
    EXPECT_EQ(SplitTableLine(line, separator, 4), fields) << line;
  }
}

TEST(TableLines, SayWhatTheirColumnsAre) {
  const struct {
    const char *Caption, *Title, *Unit;
    std::optional<double> Seconds;
  } cases[] = {
      {"Time (ms)", "Time", "ms", 1e-3},
      {"t [s]", "t", "s", 1.0},
      {"Time", "Time", "", 1.0},
      {"t (MSEC) of run", "t", "MSEC", 1e-3},
      {"t (\u00b5s", "t", "\u00b5s", 1e-6},
      {"\"t\" ( Seconds )", "t", "Seconds", 1.0},
      {"vF (V)", "vF", "V", {}},
      {"t (h)", "t", "h", {}},
  };
  for (const auto& [caption, title, unit, seconds] : cases) {
    EXPECT_EQ(TableTitle(caption), title) << caption;
    EXPECT_EQ(TableUnit(caption), unit) << caption;
    EXPECT_EQ(SecondsIn(caption), seconds) << caption;
  }
  EXPECT_EQ(TableNumber("1,5", ';'), 1.5);
  EXPECT_FALSE(TableNumber("1,5", ','));
  EXPECT_FALSE(TableNumber("1.000,5", ';'));
  EXPECT_EQ(TableText("\xEF\xBB\xBF"
                      "a\rb\r"),
            "a\nb\n");
  EXPECT_EQ(TableText("a\r\nb"), "a\r\nb");
}

TEST(Names, ThatAreNearAreTold) {
  const std::vector<std::string> names{"Velocity", "Position", "KVI", "KVP", "--until", "KP"};
  const char* const told[][2] = {
      {"velo", "Velocity"},     {"SITION", "Position"},
      {"Zelocity", "Velocity"}, {"Vleocity", "Velocity"},
      {"KVO", "KVI"},           {"KVIX", "KVI"},
      {"--untill", "--until"},  {"x", ""},
      {"--u", "--until"},       {"PK", "KP"},
      {"Current", ""},          {"Postion", "Position"},
      {"xxxxcity", ""},
  };
  for (const auto& [text, nearest] : told) EXPECT_EQ(NearestName(text, names), nearest) << text;
  EXPECT_EQ(NearestName("x", {"p"}), "") << "a letter is no misspelling of another";
}

}  // namespace
}  // namespace torvane
