#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <new>

#include "core/run_loop.h"
#include "instruments/meter/meter.h"
#include "models/factories.h"
#include "models/loop.h"

// What holds for each model of the catalogue.

// Every allocation of this program is counted, and one of them can be made to fail.
namespace {
std::atomic<long> allocations = 0;
long failingAllocation = -1;
}  // namespace

// Out of line: the compiler must not see malloc and free beside a new or delete of its own.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (++allocations == failingAllocation) throw std::bad_alloc();
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace torvane {
namespace {

using test::Loop;

class EveryModel : public testing::TestWithParam<std::string> {};

// As the desktop runs it, with every instrument at work. A report fails the test, among them that
// of states or blocks which do not agree with the bench.
TEST_P(EveryModel, RunsWithItsInstruments) {
  Loop loop(GetParam());
  ASSERT_TRUE(AddMeter(loop.Model(), "Meter"));
  for (const auto kind : {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine}) {
    // Pressed one after the other: a sweep takes the rest of the time.
    for (Instrument* analyser : loop.Bench().Instruments(kind)) {
      dynamic_cast<FrequencyAnalyser&>(*analyser).Run();
      const double end = loop.Model().Time() + 0.4;
      while (loop.Model().Time() < end && analyser->Measuring()) RunPass(loop.Model());
    }
  }
  while (loop.Model().Time() < 1.0) ASSERT_EQ(RunPass(loop.Model()), PassResult::Running);
  const auto values = test::Values(loop.Model());
  EXPECT_TRUE(std::ranges::all_of(values, [](double value) { return std::isfinite(value); }));
  EXPECT_FALSE(std::ranges::all_of(values, [](double value) { return value == 0.0; }));
}

// A model's own solver, which is bound to it at compile time, against the general one.
TEST_P(EveryModel, GivesTheBitsOfTheGeneralSolverAndAllocatesNothing) {
  const auto outcome = [](const std::function<void(ZelSolver & solver)>& run) {
    Loop loop(GetParam());
    run(loop.Model().Solver());
    return test::Values(loop.Model());
  };
  long allocated = -1;
  const auto own = outcome([&](ZelSolver& solver) {
    solver.RunUntil(0.001);
    allocated = allocations;
    solver.RunUntil(0.15);
    allocated = allocations - allocated;
  });
  EXPECT_EQ(allocated, 0);
  EXPECT_EQ(own, outcome([](ZelSolver& solver) { solver.ZelSolver::RunUntil(0.15); }));
}

// Lets allocations of the construction fail, one at a time.
TEST_P(EveryModel, ThatCannotBeBuiltSaysSo) {
  test::Recorder recorder;
  const Catalogue catalogue;
  const long before = allocations;
  catalogue.Load(GetParam());
  const long needed = allocations - before;
  for (long failing = 1; failing <= needed; failing += 1 + needed / 40) {
    recorder.Take();
    failingAllocation = allocations + failing;
    const auto model = catalogue.Load(GetParam());
    failingAllocation = -1;
    ASSERT_FALSE(model) << failing;
    ASSERT_TRUE(recorder.Take().back().starts_with("Error: Fault in M")) << failing;
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryModel, testing::ValuesIn(ModelNames()));

TEST(Catalogue, KnowsItsModelsAndNoOthers) {
  for (int i = 0; i < 15; ++i) {
    EXPECT_EQ(FindModel(ModelNames().at(static_cast<std::size_t>(i))), i);
    EXPECT_EQ(LoadModel(i)->Name(), ModelNames().at(static_cast<std::size_t>(i)));
  }
  EXPECT_EQ(FindModel("17-1 Perpetual Motion"), -1);
  Catalogue catalogue;
  EXPECT_FALSE(catalogue.Add({"3-1 PI Controller", "own.loop", MakeAnalogPI}));
  EXPECT_TRUE(catalogue.Add({"Own", "own.loop", MakeAnalogPI}));
  EXPECT_EQ(catalogue.Names()[15], "Own");
  EXPECT_EQ(catalogue.Load("Own")->Name(), "Own");
  EXPECT_TRUE(catalogue.Add({"Wrong", "wrong.loop", [](auto&) { return nullptr; }}));
  EXPECT_FALSE(catalogue.Load("Wrong"));
  test::Recorder recorder;
  for (const int wrong : {-1, 15}) EXPECT_FALSE(LoadModel(wrong));
  EXPECT_EQ(recorder.Take(), test::Messages(2, "Fatal Error: Fault in LoadModel"));
}

}  // namespace
}  // namespace torvane
