#include <algorithm>

#include "loops/shipped.h"

// Whatever is cut off or left out of a loop's text, reading it ends with problems at places that
// the text has, or with a plan.

namespace torvane::loops {
namespace {

void Check(const std::string& text) {
  const LoopReading reading = ReadLoop(text);
  bool errors = false;
  const auto lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  for (const Problem& problem : reading.Problems) {
    errors = errors || !problem.Warning;
    ASSERT_TRUE(problem.Where.Line >= 1 && problem.Where.Line <= lines && problem.Where.Column >= 1)
        << problem.Text;
    ASSERT_FALSE(problem.Text.empty());
  }
  ASSERT_EQ(reading.Plan == nullptr, errors) << text;
}

class BrokenTextTest : public testing::TestWithParam<const char*> {};

TEST_P(BrokenTextTest, IsRefusedOrRead) {
  const std::string text = ShippedText(GetParam());
  for (std::size_t i = 0; i < text.size(); ++i) {
    ASSERT_NO_FATAL_FAILURE(Check(text.substr(0, i))) << "cut off behind " << i;
    ASSERT_NO_FATAL_FAILURE(Check(std::string(text).erase(i, 1))) << "without byte " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Loops, BrokenTextTest,
                         testing::Values("PIPlus", "AnalogPI", "DigitalPI", "DigitalPID",
                                         "AnalogFilters", "Resonance", "CascadePosition",
                                         "DeadTimePlant", "OwnPID", "StateFeedback",
                                         "TemperatureLoop", "CascadeNotch", "FirstLoop"),
                         [](const auto& name) { return name.param; });

}  // namespace
}  // namespace torvane::loops
