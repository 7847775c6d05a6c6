#include "library/d_controller.h"

#include <gtest/gtest.h>

#include "support/bare_model.h"

namespace torvane {
namespace {

std::vector<bool> Flags(ZelDController& clock, std::initializer_list<double> times) {
  std::vector<bool> flags;
  for (const double t : times) {
    clock.AtTime(t);
    flags.push_back(clock.SampleDue());
  }
  return flags;
}

using Raised = std::vector<bool>;

TEST(DControllerTest, RaisesTheFlagAtEachPeriodAndCatchesUpOnePeriodPerTick) {
  test::BareModel model;
  ZelDController clock(model.Bench(), 0.001);
  EXPECT_EQ(Flags(clock, {0.0, 0.0, 0.0005, 0.001}), (Raised{true, false, false, true}));
  // Due at 2, 3 and 4 ms: three ticks at 4.5 ms make up for them.
  EXPECT_EQ(Flags(clock, {0.0045, 0.0045, 0.0045, 0.0045}), (Raised{true, true, true, false}));
  EXPECT_EQ(Flags(clock, {-1.0}), (Raised{false}));
}

TEST(DControllerTest, ANewPeriodCountsFromTheSampleThatIsAlreadyDue) {
  test::BareModel model;
  ZelDController clock(model.Bench(), 1.0);
  clock.AtTime(0.0);
  clock.SetPeriod(0.25);
  EXPECT_EQ(clock.Period(), 0.25);
  EXPECT_EQ(Flags(clock, {0.5, 1.0, 1.125, 1.25}), (Raised{false, true, false, true}));
}

TEST(DControllerTest, TheLoopSeesTheFlagOneEvaluationLate) {
  test::BareModel model(1.0);
  ZelDController clock(model.Bench(), 2.0);
  std::vector<std::pair<double, bool>> seen;
  model.Loop = [&](double t) { seen.emplace_back(t, clock.SampleDue()); };
  model.Solver().RunUntil(3.0);
  // Ticks at 0, at the end of the second step (2) and never at the repeated times.
  const std::vector<std::pair<double, bool>> expected = {
      {0.0, false}, {0.5, true},  {0.5, false}, {1.0, false}, {1.0, false}, {1.5, false},
      {1.5, false}, {2.0, false}, {2.0, true},  {2.5, false}, {2.5, false}, {3.0, false}};
  EXPECT_EQ(seen, expected);
}

class Probe final : public ZelDLibraryClass {
 public:
  Probe(const ZelDController* clock, int& destroyed)
      : ZelDLibraryClass(clock), destroyed_(destroyed) {}
  ~Probe() override { ++destroyed_; }
  double Step(double x) override { return x * Period(); }

 private:
  int& destroyed_;
};

TEST(DControllerTest, OwnsTheBlocksThatAreAddedToIt) {
  test::BareModel model;
  int destroyed = 0;
  {
    ZelDController clock(model.Bench(), 0.5);
    Probe& first = clock.Add<Probe>(destroyed);
    Probe& second = clock.Add<Probe>(destroyed);
    EXPECT_EQ(first.Step(4.0), 2.0);
    clock.SetPeriod(0.25);
    EXPECT_EQ(second.Step(4.0), 1.0);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 2);
}

}  // namespace
}  // namespace torvane
