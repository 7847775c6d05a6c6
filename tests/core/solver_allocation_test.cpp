#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "core/model.h"

// Every allocation of this program is counted.
namespace {
std::atomic<long> allocations{0};
}

void* operator new(std::size_t size) {
  ++allocations;
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

/// An oscillator of 1 rad/s with a time-driven object.
class Oscillator : public ZelModel, private TimeDriven {
 public:
  Oscillator() : ZelModel("Oscillator", 1e-3) { Bench().AddTimeDriven(*this); }
  void Derivatives(double) override {
    position_.Derivative = speed_.Value;
    speed_.Derivative = -position_.Value;
  }
  void AtTime(double) override { ++Ticks; }
  int Ticks = 0;

 private:
  TimeVariable time_{Bench(), "Time", "sec", {}};
  StateVariable position_{Bench(), "position", "", 1.0};
  StateVariable speed_{Bench(), "speed", "", 0.0};
};

TEST(SolverAllocationTest, AStepAllocatesNothing) {
  const long beforeModel = allocations;
  Oscillator model;
  const long beforeRun = allocations;
  EXPECT_GT(beforeRun, beforeModel);  // the count works: a model does allocate
  model.Solver().RunUntil(0.9995);
  const long afterRun = allocations;
  EXPECT_EQ(afterRun, beforeRun);
  EXPECT_EQ(model.Ticks, 4000);
}

}  // namespace
}  // namespace torvane
