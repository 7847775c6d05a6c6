#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <new>

#include "core/constant.h"
#include "library/d_controller.h"
#include "library/d_low_pass1.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "library/d_pid.h"
#include "library/low_pass1.h"
#include "library/low_pass2.h"
#include "library/notch.h"
#include "library/two_inertia_mechanism.h"
#include "library/wave.h"
#include "support/bare_model.h"
#include "support/recorder.h"

// Every allocation of this program is counted, and one of them can be made to fail.
namespace {
long allocations = 0;
long failingAllocation = -1;
}  // namespace

void* operator new(std::size_t size) {
  if (++allocations == failingAllocation) throw std::bad_alloc();
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace torvane {
namespace {

using Build = std::function<void(ZelBenchTop&)>;

// Lets each allocation of the construction fail in turn: every time the fault is reported once and
// the exception goes on to the model. Returns the number of failures.
int CheckFaults(const std::string& fault, const Build& build) {
  for (int failures = 0;; ++failures) {
    test::BareModel model;
    test::Recorder recorder;
    bool failed = false;
    failingAllocation = allocations + 1 + failures;
    try {
      build(model.Bench());
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    failingAllocation = -1;
    if (!failed) return failures;
    EXPECT_EQ(recorder.Take(), (test::Messages{"Error: " + fault}));
  }
}

TEST(LibraryAllocationTest, ABlockThatCannotBeBuiltSaysSo) {
  const MechanismSettings mechanism{.JM = 1.0, .JL = 1.0, .KS = 1.0, .KCV = 1.0};
  const std::vector<std::pair<std::string, Build>> blocks = {
      {"Fault in ZelDController :: ZelDController",
       [](ZelBenchTop& bench) { ZelDController block(bench, 0.001); }},
      {"Fault in ZelLowPass1 :: ZelLowPass1",
       [](ZelBenchTop& bench) { ZelLowPass1 block(bench, 10.0); }},
      {"Fault in ZelLowPass2 :: ZelLowPass2",
       [](ZelBenchTop& bench) { ZelLowPass2 block(bench, 10.0, 0.7); }},
      {"Fault in ZelNotch :: ZelNotch",
       [](ZelBenchTop& bench) { ZelNotch block(bench, 10.0, 0.7); }},
      {"Fault #1 in Zel2JMech :: Zel2JMech",
       [&](ZelBenchTop& bench) { Zel2JMech block(bench, mechanism); }},
      {"Fault in ZelWave :: ZelWave",
       [](ZelBenchTop& bench) { ZelWave block(bench, "Source", {}); }},
  };
  for (const auto& [fault, build] : blocks) EXPECT_GT(CheckFaults(fault, build), 0) << fault;
}

TEST(LibraryAllocationTest, AStepAllocatesNothing) {
  test::BareModel model(1e-4);
  ZelBenchTop& bench = model.Bench();
  Constant gain(bench, "gain", "", 0.5, 0.0, 100.0);
  ZelLowPass1 first(bench, 10.0);
  ZelLowPass2 second(bench, 10.0, 0.7);
  ZelNotch notch(bench, 10.0, 0.7);
  Zel2JMech mechanism(bench, {.JM = 1.0, .JL = 1.0, .KS = 1.0, .KCV = 1.0});
  ZelWave wave(bench, "Source", {.Index = 7});
  ZelDController clock(bench, 0.001);
  auto& filter = clock.Add<ZelDNotch>(10.0, 0.7);
  auto& smooth = clock.Add<ZelDLowPass1>(10.0);
  auto& pid = clock.Add<ZelDPid>(&gain, &gain, &gain, &gain, &gain, 20.0, 1.2);
  auto& pi = clock.Add<ZelDPiPlus>(&gain, &gain, &gain, 20.0, 1.2);
  int samples = 0;
  model.Loop = [&](double) {
    const double command = wave.Output();
    first.SetInput(command);
    second.SetInput(command);
    notch.SetInput(command);
    mechanism.SetMotorTorque(command);
    if (!clock.SampleDue()) return;
    smooth.Step(filter.Step(pid.Update(command, 0, 0) + pi.Update(command, 0, 0)));
    ++samples;
  };
  const long before = allocations;
  model.Solver().RunUntil(0.1);
  EXPECT_EQ(allocations, before);
  EXPECT_GE(samples, 100);
}

}  // namespace
}  // namespace torvane
