#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

std::map<std::string, double> Figures(const std::string& text) {
  std::map<std::string, double> figures;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const auto equals = word.find('=');
    figures[word.substr(0, equals)] = std::stod(word.substr(equals + 1));
  }
  return figures;
}

TEST(Speed, PrintsFiguresThatAgreeWithEachOther) {
  for (const char* more : {"", " --no-instruments"}) {
    const Outcome outcome = RunCliLine("speed 1 --for 0.2" + std::string(more));
    ASSERT_EQ(outcome.Code, 0) << outcome.Err;
    auto figures = Figures(outcome.Out);
    ASSERT_EQ(figures.size(), 4U) << outcome.Out;
    EXPECT_GE(figures["wall_s"], 0.2);
    EXPECT_GT(figures["simulated_s"], 0.0);
    // Both derive from the two figures before them, at a step of 1e-5 s: equal to rounding.
    EXPECT_DOUBLE_EQ(figures["ratio"], figures["simulated_s"] / figures["wall_s"]);
    const double steps = figures["simulated_s"] / 1e-5;
    EXPECT_NEAR(figures["ns_per_step"] * steps / 1e9, figures["wall_s"], 1e-9);
  }
}

}  // namespace
}  // namespace torvane::test
