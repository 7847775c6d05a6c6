#pragma once

#include <deque>
#include <tuple>

#include "core/bench.h"
#include "core/carried.h"
#include "core/messages.h"
#include "core/time_driven.h"
#include "core/variable.h"

namespace torvane {

/// Puts a continuous block on a bench: the solver integrates its states, and it is evaluated at
/// each of the solver's times, after what was registered before it. The block is plain numbers; it
/// may lie in the struct that a model computes with and then outlives this.
template <class Block>
class OnBench : public TimeDriven, public Carrier {
 public:
  OnBench(ZelBenchTop& bench, Block& block) try : block_(block) {
    auto name = Block::StateNames.begin();
    std::apply(
        [&](auto&... state) {
          (states_.emplace_back(bench, state, *name++, "Null", 0.0, DisplayDefaults{},
                                Visibility::Internal),
           ...);
        },
        block.States());
    bench.AddTimeDriven(*this);
  } catch (...) {
    Error(Block::Fault);
  }
  OnBench(const OnBench&) = delete;
  OnBench& operator=(const OnBench&) = delete;

  void AtTime(double /*t*/) override {
    if constexpr (requires { block_.BeginRun(); }) block_.BeginRun();
    block_.Evaluate();
  }
  const void* Moves() const override { return &block_; }
  void Reset(ResetKind kind) override { block_.FollowReset(kind); }
  void FollowStates() override { block_.FollowReset(ResetKind::States); }
  /// A block holds its inputs until the model writes them anew.
  void Carry(Carried& carried) override {
    carried.Keep(block_);
    std::apply([&](auto&... input) { (carried.Number(input), ...); }, block_.Inputs());
  }

 private:
  Block& block_;
  std::deque<StateVariable> states_;
};

}  // namespace torvane
