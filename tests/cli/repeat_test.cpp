#include <gtest/gtest.h>

#include <algorithm>

#include "cli/cli_process.h"
#include "models/catalogue.h"

namespace torvane::test {
namespace {

class Repeat : public testing::TestWithParam<int> {};

// Numbers are printed in the shortest form that reads back as the same bits, so equal bytes are
// equal bits: of every signal, 100 times a second, at the defaults.
TEST_P(Repeat, TenSecondsToTheBitInANewProcess) {
  const std::string& model = ModelNames().at(static_cast<std::size_t>(GetParam()));
  const Arguments arguments{"run", model, "--until", "10", "--every", "0.01"};
  const Outcome first = RunCli(arguments);
  const Outcome second = RunCli(arguments);
  EXPECT_EQ(first.Code, 0);
  EXPECT_EQ(first.Err, "");
  EXPECT_EQ(second.Err, "");
  // Compared as a whole: on a difference 1000 rows would be printed.
  EXPECT_TRUE(first.Out == second.Out) << model;
  const Table table = ParseTable(first.Out);
  EXPECT_GE(table.Rows(), 1000U);
  const bool moves =
      std::any_of(table.Columns.begin() + 1, table.Columns.end(),
                  [](const auto& signal) { return signal.front() != signal.back(); });
  EXPECT_TRUE(moves);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Repeat, testing::Range(0, 15));

}  // namespace
}  // namespace torvane::test
