#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

#include "core/messages.h"
#include "core/solver.h"
#include "core/variable.h"

namespace torvane {

/// The solver's step with one model's equations, blocks and states bound at compile time.
///
/// The general step meets states and blocks through pointers, and every value makes its way from
/// one to the next through memory: more than half of the time goes there. Here the compiler sees
/// the whole step and keeps values in registers; the operations and their order are the same, to
/// the bit.
///
/// The model offers States(), the integrated states in the order of registration but for those that
/// a block merely holds, and Blocks(), its time-driven objects in the order of construction; both
/// as tuples of references. What does not agree with the bench is a fatal error at the first run.
template <class Model>
class FusedSolver final : public ZelSolver {
 public:
  static constexpr int MaxOrder = 50;

  FusedSolver(ZelBenchTop& bench, double h, Model& model)
      : ZelSolver(bench, h, model, MaxOrder), model_(model) {}

  void RunUntil(double tEnd) override {
    if (!checked_) CheckRegistration();
    ClearOverflowFlag();
    while (bench_.Time() < tEnd) {
      if (NearOverflow()) [[unlikely]] {
        WatchedStep(bench_.Time());
      } else {
        FusedStep(model_, bench_.Time());
      }
    }
  }

 private:
  // flatten: without it the equations are called four times a step rather than inlined.
  [[gnu::flatten]] void FusedStep(Model& model, double t) {
    const auto states = model.States();
    constexpr std::size_t count = std::tuple_size_v<decltype(states)>;
    std::array<double, count> start{};
    std::array<double, count> sum{};
    const auto forEach = [&](auto&& use) {
      [&]<std::size_t... I>(std::index_sequence<I...>) {
        (use(std::get<I>(states), start[I], sum[I]), ...);
      }
      (std::make_index_sequence<count>{});
    };
    const double h = h_;
    const double half = 0.5 * h;

    forEach([](StateVariable& state, double& from, double&) { from = state.Value; });
    EvaluateWithinStep(model, t);
    forEach([half](StateVariable& state, double from, double& slopes) {
      slopes = state.Derivative;
      state.Value = from + half * state.Derivative;
    });
    EvaluateWithinStep(model, t + half);
    forEach([half](StateVariable& state, double from, double& slopes) {
      slopes += 2.0 * state.Derivative;
      state.Value = from + half * state.Derivative;
    });
    EvaluateWithinStep(model, t + half);
    forEach([h](StateVariable& state, double from, double& slopes) {
      slopes += 2.0 * state.Derivative;
      state.Value = from + h * state.Derivative;
    });
    EvaluateAtEnd(model, t + h);
    double size = 0.0;
    forEach([h, &size](StateVariable& state, double from, double& slopes) {
      slopes += state.Derivative;
      state.Value = Combine(from, slopes, h);
      state.TakePending();
      size += Sized(state);
    });
    ForEachHeld(model, [&size](StateVariable& state) {
      state.TakePending();
      size += Sized(state);
    });
    EndStep(t, size);
  }

  static void EvaluateWithinStep(Model& model, double t) {
    model.Model::Derivatives(t);
    const auto tick = [t](auto& block) {
      if constexpr (requires { block.AtTimeWithinStep(t); }) {
        block.AtTimeWithinStep(t);
      } else {
        block.AtTime(t);
      }
    };
    std::apply([&](auto&... blocks) { (tick(blocks), ...); }, model.Blocks());
  }

  static void EvaluateAtEnd(Model& model, double t) {
    model.Model::Derivatives(t);
    std::apply([t](auto&... blocks) { (blocks.AtTime(t), ...); }, model.Blocks());
  }

  template <class Use>
  static void ForEachHeld(Model& model, Use&& use) {
    const auto ofBlock = [&](auto& block) {
      if constexpr (requires { block.HeldStates(); }) {
        std::apply([&](auto&... states) { (use(states), ...); }, block.HeldStates());
      }
    };
    std::apply([&](auto&... blocks) { (ofBlock(blocks), ...); }, model.Blocks());
  }

  void CheckRegistration() {
    checked_ = true;
    std::vector<const StateVariable*> bound;
    std::apply([&](auto&... states) { (bound.push_back(&states), ...); }, model_.States());
    ForEachHeld(model_, [&](StateVariable& state) { bound.push_back(&state); });
    const auto registered = ZelSolver::States();
    const bool sameStates =
        std::is_permutation(bound.begin(), bound.end(), registered.begin(), registered.end());

    std::vector<const TimeDriven*> blocks;
    std::apply([&](auto&... block) { (blocks.push_back(&block), ...); }, model_.Blocks());
    const auto& driven = bench_.TimeDrivenObjects();
    const bool sameBlocks = std::equal(blocks.begin(), blocks.end(), driven.begin(), driven.end());
    if (!sameStates || !sameBlocks) {
      FatalError("Internal Error: states or blocks of model " + model_.Name() +
                 " do not agree with its bench");
    }
  }

  Model& model_;
  bool checked_ = false;
};

}  // namespace torvane
