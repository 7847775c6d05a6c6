#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

const std::string Folder = TORVANE_TEST_DATA "/reference/";

struct Reference {
  std::string File;
  std::string CommandLine;
};

// Names the case in a failed test.
std::ostream& operator<<(std::ostream& stream, const Reference& reference) {
  return stream << reference.File;
}

std::vector<Reference> ReadReferences() {
  std::vector<Reference> references;
  for (const std::string& line : Lines(ReadWholeFile(Folder + "commands.txt"))) {
    if (line.empty() || line.front() == '#') continue;
    const auto blank = line.find(' ');
    references.push_back({line.substr(0, blank), line.substr(blank + 1)});
  }
  return references;
}

std::string CaseName(const testing::TestParamInfo<Reference>& info) {
  std::string name = info.param.File.substr(0, info.param.File.find('.'));
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class ReferenceTest : public testing::TestWithParam<Reference> {};

TEST_P(ReferenceTest, IsWhatTheCommandPrints) {
  const Table expected = ParseTable(ReadWholeFile(Folder + GetParam().File));
  const Outcome outcome = RunCliLine(GetParam().CommandLine);
  EXPECT_EQ(outcome.Err, "");
  ASSERT_EQ(outcome.Code, 0);
  const Table actual = ParseTable(outcome.Out);
  ASSERT_EQ(actual.Header, expected.Header);
  ASSERT_EQ(actual.Rows(), expected.Rows());
  for (std::size_t column = 0; column < expected.Columns.size(); ++column) {
    for (std::size_t row = 0; row < expected.Rows(); ++row) {
      // The files give enough digits for every bit of a number.
      ASSERT_EQ(actual.Columns[column][row], expected.Columns[column][row])
          << expected.Header[column] << ", row " << row;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, ReferenceTest, testing::ValuesIn(ReadReferences()), CaseName);

}  // namespace
}  // namespace torvane::test
