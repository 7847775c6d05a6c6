#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <sstream>
#include <thread>

#include "cli/cli_process.h"
#include "models/catalogue.h"

namespace torvane::test {
namespace {

const std::string References = TORVANE_TEST_DATA "/reference/";
constexpr std::size_t Thinned = 4;  // one of so many rows stands in a file

struct Reference {
  std::string File;
  std::string CommandLine;
  std::string Twin = {};  // a loop's text that takes the model's place
};

// Loops as texts that run as the model does, to the bit.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> Twins{
    {{"'2-1 PI+ Controller'", "PIPlus"},
     {"'3-1 PI Controller'", "AnalogPI"},
     {"'4-1 Digital PI Controller'", "DigitalPI"},
     {"'6-1 PID Controller'", "DigitalPID"},
     {"'9-1 Analog Filters'", "AnalogFilters"},
     {"'15-1 Resonance'", "Resonance"},
     {"'16-1 Cascade Position Loop'", "CascadePosition"}}};

std::vector<Reference> ReadReferences() {
  std::vector<Reference> references;
  std::istringstream lines(ReadWholeFile(References + "commands.txt"));
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.front() == '#') continue;
    const auto blank = line.find(' ');
    references.push_back({line.substr(0, blank), line.substr(blank + 1)});
    for (const auto& [model, twin] : Twins) {
      const auto at = line.find("run " + std::string(model));
      if (at != blank + 1) continue;
      Reference again = references.back();
      again.Twin = twin;
      again.CommandLine.replace(4, model.size(), TORVANE_SHARE "/loops/" + again.Twin + ".mo");
      references.push_back(again);
      break;
    }
  }
  return references;
}

std::string CaseName(const testing::TestParamInfo<Reference>& info) {
  std::string name = info.param.File.substr(0, info.param.File.find('.'));
  std::replace(name.begin(), name.end(), '-', '_');
  return name + info.param.Twin;
}

class ReferenceTest : public testing::TestWithParam<Reference> {};

TEST_P(ReferenceTest, IsWhatTheCommandPrints) {
  const Table expected = ParseTable(ReadWholeFile(References + GetParam().File));
  const Outcome outcome = Shell("torvane-cli " + GetParam().CommandLine);
  EXPECT_EQ(outcome.Err.find("Error"), std::string::npos) << outcome.Err;
  ASSERT_EQ(outcome.Code, 0);
  const Table actual = ParseTable(outcome.Out);
  ASSERT_EQ(actual.Header, expected.Header);
  ASSERT_EQ((actual.Rows() + Thinned - 1) / Thinned, expected.Rows());
  for (std::size_t column = 0; column < expected.Columns.size(); ++column) {
    for (std::size_t row = 0; row < expected.Rows(); ++row) {
      // The files give enough digits for every bit of a number.
      ASSERT_EQ(actual.Columns[column][row * Thinned], expected.Columns[column][row])
          << expected.Header[column] << ", row " << row;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, ReferenceTest, testing::ValuesIn(ReadReferences()), CaseName);

// Numbers are printed in the shortest form that reads back as the same bits, so equal bytes are
// equal bits: of every signal, 100 times a second, at the defaults.
TEST(Repeat, EveryModelsFirstSecondToTheBitInANewProcess) {
  for (const std::string& model : ModelNames()) {
    const std::string line = "torvane-cli run '" + model + "' --until 1 --every 0.01";
    const Outcome outcome = Shell(line + " | tee first.csv; " + line + " | cmp - first.csv >&2");
    EXPECT_EQ(outcome.Err, "") << model;
    const Table table = ParseTable(outcome.Out);
    EXPECT_TRUE(std::any_of(table.Columns.begin() + 1, table.Columns.end(), [](const auto& signal) {
      return signal.front() != signal.back();
    })) << model;
  }
}

TEST(Run, AnInterruptEndsItWithTheRowsSoFarWhole) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const std::string out = "rows" + std::to_string(signal);
    const std::string rows = out + ".part";
    const Process process("exec torvane-cli run 1 --until 1e6 --every 0.001 --out " + out);
    // Until something has been written, for as long as a very slow machine may need.
    EXPECT_EQ(Shell("for i in $(seq 1200); do test -s " + rows + " && exit; sleep 0.05; done").Code,
              0);
    kill(process.Id(), signal);
    const Outcome outcome = process.Wait();
    EXPECT_EQ(outcome.Code, 1);
    const std::string said = "Error: interrupted at ";
    ASSERT_TRUE(outcome.Err.starts_with(said)) << outcome.Err;
    EXPECT_TRUE(outcome.Err.ends_with(" s; the rows so far are in " + rows + "\n")) << outcome.Err;
    const std::string text = ReadWholeFile(Folder() + rows);
    EXPECT_TRUE(text.ends_with("\n"));
    // Nothing that was recorded before the interrupt is missing: the last row is the last multiple.
    EXPECT_LT(std::stod(outcome.Err.substr(said.size())) - ParseTable(text).Columns[0].back(),
              0.001 + 1e-5);
  }
}

}  // namespace
}  // namespace torvane::test
