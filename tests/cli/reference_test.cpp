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

// Reordering the floating-point operations of a loop moves its signals by about 1e-13 of their
// largest value; rounding instead of truncating, or a signal that lags by one evaluation, shows far
// above 1e-9.
constexpr double TrajectoryTolerance = 1e-9;

void ExpectSameTrajectory(const Table& expected, const Table& actual) {
  for (std::size_t column = 0; column < expected.Columns.size(); ++column) {
    double largest = 0.0;
    for (const double value : expected.Columns[column]) {
      largest = std::max(largest, std::abs(value));
    }
    for (std::size_t row = 0; row < expected.Rows(); ++row) {
      ASSERT_NEAR(actual.Columns[column][row], expected.Columns[column][row],
                  TrajectoryTolerance * largest)
          << expected.Header[column] << ", row " << row;
    }
  }
}

// Samples and spectra are single-precision numbers, whose rounding is a larger part of the small
// bins: 0.01 dB, and its counterpart of about a thousandth in phase, where the excitation has
// power.
constexpr double GainTolerance = 0.01;
constexpr double PhaseTolerance = 0.06;
constexpr double ExcitedPart = 0.4;

void ExpectSameResponse(const Table& expected, const Table& actual) {
  const auto bins =
      static_cast<std::size_t>(ExcitedPart * static_cast<double>(expected.Rows() - 1));
  for (std::size_t bin = 1; bin <= bins; ++bin) {
    ASSERT_EQ(actual.Columns[0][bin], expected.Columns[0][bin]);
    ASSERT_DOUBLE_EQ(actual.Columns[1][bin], expected.Columns[1][bin]);
    ASSERT_NEAR(actual.Columns[2][bin], expected.Columns[2][bin], GainTolerance) << bin;
    ASSERT_NEAR(std::remainder(actual.Columns[3][bin] - expected.Columns[3][bin], 360.0), 0.0,
                PhaseTolerance)
        << bin;
  }
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
  if (expected.Header.front() == "Bin") {
    ExpectSameResponse(expected, actual);
  } else {
    ExpectSameTrajectory(expected, actual);
  }
}

INSTANTIATE_TEST_SUITE_P(Files, ReferenceTest, testing::ValuesIn(ReadReferences()), CaseName);

}  // namespace
}  // namespace torvane::test
