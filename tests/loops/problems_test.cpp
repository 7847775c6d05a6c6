#include <gtest/gtest.h>

#include "loops/own_loops.h"
#include "support/expected_lines.h"

// Every kind of fault in a loop's text has its message, at its place:
// tests/data/loops/problems.txt.

namespace torvane::loops {
namespace {

// The text of a line of the table; "\n" in it begins a line.
std::string TextOf(const std::string& line) {
  const bool whole = line.starts_with(">>");
  std::string text = line.substr(whole ? 3 : 2);
  for (std::size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n")) {
    text.replace(at, 2, "\n");
  }
  return whole ? text : "model M\n" + text + "\nend M;\n";
}

TEST(LoopProblemsTest, AreToldAllAtOnceAtTheirPlaces) {
  std::ifstream file(TORVANE_TEST_DATA "/loops/problems.txt");
  std::vector<std::string> lines;
  int cases = 0;
  for (const std::string& line : test::LinesOf(file)) {
    if (line.starts_with("#")) lines.push_back(line);
    if (!line.starts_with(">")) continue;
    ++cases;
    lines.push_back(line);
    const LoopReading reading = ReadLoop(TextOf(line));
    bool errors = false;
    for (const Problem& problem : reading.Problems) {
      errors = errors || !problem.Warning;
      lines.push_back((problem.Warning ? "  warning " : "  ") + std::to_string(problem.Where.Line) +
                      ":" + std::to_string(problem.Where.Column) + ": " + problem.Text);
    }
    EXPECT_FALSE(reading.Problems.empty()) << line;
    EXPECT_EQ(reading.Plan == nullptr, errors) << line;
  }
  EXPECT_GE(cases, 60);
  test::ExpectLines("loops/problems.txt", lines);
}

}  // namespace
}  // namespace torvane::loops
