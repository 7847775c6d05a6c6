#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/bench.h"
#include "core/carried.h"
#include "core/combine.h"
#include "core/messages.h"
#include "core/model.h"
#include "core/number_faults.h"
#include "core/overflow.h"
#include "core/sample_tape.h"
#include "core/solver.h"
#include "core/time_driven.h"
#include "core/variable.h"

namespace torvane {

/// The solver's step with one model's equations, blocks and states bound at compile time.
///
/// The general step meets states and blocks through pointers, and every value makes its way from
/// one to the next through memory: most of the time goes there. Here a run works on a copy of the
/// model's loop that nobody else can see, so that the compiler keeps its values in registers, and
/// hands it back at the end; the operations and their order are the same, to the bit.
///
/// The model offers
///   - Loop, a struct of plain numbers: the signals, continuous blocks and clock that a step moves;
///   - loop_, the one that its signals, blocks and clock on the bench refer to;
///   - HandOnChanges(), if any: passes changed constants on to the blocks, once a run;
///   - Equations(Loop& s, double t): reads and writes the signals of s;
///   - TakeMemory() and GiveMemory(): called around all use of the equations, for what the model's
///     class remembers;
///   - Parts(Loop& s): its states and what time drives, the latter in the order of registration,
///     and its command sources. What does not agree with the bench ends the program.
template <class Model>
class FusedSolver final : public ZelSolver {
 public:
  static constexpr int MaxOrder = 50;

  /// The model may still be under construction; it is used from the first run on.
  FusedSolver(ZelBenchTop& bench, double h, ZelModel& model)
      : ZelSolver(bench, h, model, MaxOrder), tape_(bench) {}

  void RunUntil(double tEnd) override {
    if (!checked_) CheckRegistration();
    ClearOverflowFlag();
    while (bench_.Time() < tEnd) {
      if (NearOverflow() || AnyPending(TheModel().Parts(TheModel().loop_))) [[unlikely]] {
        WatchedStep(bench_.Time());
      } else {
        Run<false>(tEnd, bench_.Time() < oneByOneUntil_ ? 1 : MostSteps);
      }
    }
  }

  Ahead RunAhead(double tEnd, int mostSamples, Instrument* only) override {
    if (!checked_) CheckRegistration();
    ClearOverflowFlag();
    const bool watched = NearOverflow() || bench_.Time() < oneByOneUntil_ ||
                         AnyPending(TheModel().Parts(TheModel().loop_));
    if (watched ||
        !tape_.Begin(mostSamples, std::as_bytes(std::span(&TheModel().loop_, 1)), only)) {
      return ZelSolver::RunAhead(tEnd, mostSamples, only);
    }
    if (!Run<true>(std::min(tEnd, tape_.Stop()), MostSteps)) {
      tape_.Drop();
      return ZelSolver::RunAhead(tEnd, mostSamples, only);
    }
    return {tape_.Stop(), tape_.Deliver()};
  }

  /// The model's Derivatives: the equations on the loop itself, for whoever evaluates the model
  /// from outside a run.
  void Derivatives(double t) {
    Model& model = TheModel();
    const auto parts = model.Parts(model.loop_);
    BeginRun(model, parts);
    ForEach(parts, [this](auto& part) { BeginStep(part, bench_.Time()); });
    model.TakeMemory();
    model.Equations(model.loop_, t);
    model.GiveMemory();
  }

 private:
  static constexpr int MostSteps = 1000;  // between two looks for an overflow

  Model& TheModel() { return static_cast<Model&>(model_); }

  // Takes steps from the present time on, at most that many, up to the first boundary at or after
  // tEnd. To look for an overflow after each of them would cost a third of a small loop's time: it
  // is looked for at the end, and where something was raised the steps are undone, to be taken
  // again one by one; the result then is false. A single one is EndStep's to judge. With the tape,
  // samples that are due on the way are taken off the copy. Who takes none has code of its own:
  // where the copy is read at places that only the bench knows, it lies in memory.
  //
  // flatten: without it the equations are called four times a step rather than inlined, and the
  // copy would have to lie in memory for them.
  template <bool Taped>
  [[gnu::flatten]] bool Run(double tEnd, int most) {
    Model& model = TheModel();
    const double h = h_;
    const Combine combine(h);
    const auto parts = model.Parts(model.loop_);
    BeginRun(model, parts);
    model.TakeMemory();
    auto moved = std::tuple_cat(std::tie(model.memory_), Moved(parts));
    const auto before = std::apply([](const auto&... what) { return std::tuple(what...); }, moved);
    for (Past& past : past_) past.Note();
    auto loop = model.loop_;
    static_assert(std::is_trivially_copyable_v<decltype(loop)>);
    // Said once more for the compiler, which then sees which states the equations never set.
    ForEach(model.Parts(loop), [](auto& part) {
      ForEach(IntegratedStates(part), [](State& state) { state.PendingSet = false; });
    });
    double t = bench_.Time();
    ClearNumberFaults();
    double end = std::min(tEnd, t + most * h);
    for (;;) {
      const double pause = Taped ? std::min(end, tape_.Next()) : end;
      Step(model, loop, t, h, combine);
      while (t + h < pause) {
        t += h;
        Step(model, loop, t, h, combine);
      }
      if (!Taped || t + h >= end) break;
      tape_.Take(t, t + h, loop);
      end = std::min(end, tape_.Stop());
      t += h;
    }
    if (most > 1 && (NumberFaultRaisedAnywhere() || !AllFinite(model.Parts(loop)) ||
                     (Taped && !tape_.Fits()))) [[unlikely]] {
      moved = before;
      for (Past& past : past_) past.Restore();
      oneByOneUntil_ = t + h;
      return false;
    }
    model.loop_ = loop;
    model.GiveMemory();
    bench_.SetTime(t);
    EndStep(t);
    return true;
  }

  template <class Loop>
  static void Step(Model& model, Loop& loop, double t, double h, const Combine& combine) {
    const auto parts = model.Parts(loop);
    const auto states =
        std::apply([](auto&... part) { return std::tuple_cat(IntegratedStates(part)...); }, parts);
    constexpr std::size_t count = std::tuple_size_v<std::remove_const_t<decltype(states)>>;
    std::array<double, count> start{};
    std::array<double, count> sum{};
    const auto forEachState = [&](auto&& use) {
      [&]<std::size_t... I>(std::index_sequence<I...>) {
        (use(std::get<I>(states), start[I], sum[I]), ...);
      }
      (std::make_index_sequence<count>{});
    };
    const auto evaluate = [&](double at) {
      model.Equations(loop, at);
      ForEach(parts, [at](auto& part) { AtTime(part, at); });
    };
    const double half = 0.5 * h;

    ForEach(parts, [t](auto& part) { BeginStep(part, t); });
    forEachState([](State& state, double& from, double&) { from = state.Value; });
    evaluate(t);
    forEachState([half](State& state, double from, double& slopes) {
      slopes = state.Derivative;
      state.Value = from + half * state.Derivative;
    });
    evaluate(t + half);
    forEachState([half](State& state, double from, double& slopes) {
      slopes += 2.0 * state.Derivative;
      state.Value = from + half * state.Derivative;
    });
    evaluate(t + half);
    forEachState([h](State& state, double from, double& slopes) {
      slopes += 2.0 * state.Derivative;
      state.Value = from + h * state.Derivative;
    });
    evaluate(t + h);
    forEachState([](const State& state, double, double& slopes) { slopes += state.Derivative; });
    combine.All(start, sum);
    forEachState([](State& state, double combined, double&) {
      state.Value = combined;
      if (state.PendingSet) [[unlikely]] {
        state.TakePending();
      }
    });
    ForEach(parts, [t, h](auto& part) {
      if constexpr (requires { part.AtEndOfStep(t); }) part.AtEndOfStep(t + h);
    });
  }

  template <class Parts>
  static bool AnyPending(const Parts& parts) {
    bool pending = false;
    ForEach(parts, [&pending](auto& part) {
      ForEach(IntegratedStates(part), [&](const State& state) { pending |= state.PendingSet; });
    });
    return pending;
  }

  template <class Parts>
  static bool AllFinite(const Parts& parts) {
    bool finite = true;
    const auto look = [&finite](const State& state) { finite &= std::isfinite(state.Value); };
    ForEach(parts, [&look](auto& part) {
      ForEach(IntegratedStates(part), look);
      ForEach(HeldStates(part), look);
    });
    return finite;
  }

  // What steps move outside the loop that they work on.
  template <class Parts>
  static auto Moved(const Parts& parts) {
    return std::apply([](auto&... part) { return std::tuple_cat(MovedOf(part)...); }, parts);
  }

  template <class Part>
  static auto MovedOf(Part& part) {
    if constexpr (requires { part.Moved(); }) {
      return part.Moved();
    } else {
      return std::tuple<>();
    }
  }

  template <class Parts, class Use>
  static void ForEach(const Parts& parts, Use&& use) {
    std::apply([&](auto&... part) { (use(part), ...); }, parts);
  }

  // Constants and sources change between runs only.
  template <class Parts>
  static void BeginRun(Model& model, const Parts& parts) {
    if constexpr (requires { model.HandOnChanges(); }) model.HandOnChanges();
    ForEach(parts, [](auto& part) {
      if constexpr (requires { part.BeginRun(); }) part.BeginRun();
    });
  }

  // What else a part is asked depends on what it offers, too.
  template <class Part>
  static void BeginStep(Part& part, double t) {
    if constexpr (requires { part.BeginStep(t); }) part.BeginStep(t);
  }

  template <class Part>
  static void AtTime(Part& part, double t) {
    if constexpr (requires { part.Evaluate(); }) part.Evaluate();
    if constexpr (requires { part.Tick(t); }) part.Tick(t);
  }

  template <class Part>
  static auto IntegratedStates(Part& part) {
    if constexpr (std::is_same_v<Part, State>) {
      return std::tie(part);
    } else if constexpr (requires { part.States(); }) {
      return part.States();
    } else {
      return std::tuple<>();
    }
  }

  template <class Part>
  static auto HeldStates(Part& part) {
    if constexpr (requires { part.HeldStates(); }) {
      return part.HeldStates();
    } else {
      return std::tuple<>();
    }
  }

  // As what the bench's list of time-driven objects has the part; nothing when it is not driven.
  template <class Part>
  static const void* Driven(const Part& part) {
    if constexpr (std::is_base_of_v<TimeDriven, Part>) {
      return part.Moves();
    } else if constexpr (
        requires(Part p) { p.Evaluate(); } || requires(Part p) { p.Tick(0.0); }) {
      return &part;
    } else {
      return nullptr;
    }
  }

  // What sampled blocks remember, which lies outside the loop.
  void FindPast() {
    Carried carried;
    for (TimeDriven* object : bench_.TimeDrivenObjects()) {
      if (auto* const carrier = dynamic_cast<Carrier*>(object)) carrier->Carry(carried);
    }
    const auto loop = std::as_bytes(std::span(&TheModel().loop_, 1));
    for (const std::span<std::byte> what : carried.Kept()) {
      if (&loop.front() <= &what.front() && &what.front() <= &loop.back()) continue;
      if (what.size() > sizeof(double))
        throw std::logic_error("a block remembers more than numbers");
      past_.push_back({what, {}});
    }
  }

  void CheckRegistration() {
    std::vector<const State*> states;
    std::vector<const void*> driven;
    Model& model = TheModel();
    ForEach(model.Parts(model.loop_), [&](auto& part) {
      const auto add = [&](State& state) { states.push_back(&state); };
      ForEach(IntegratedStates(part), add);
      ForEach(HeldStates(part), add);
      if (const void* const object = Driven(part)) driven.push_back(object);
    });

    std::vector<const State*> registeredStates;
    for (const StateVariable* state : ZelSolver::States()) {
      registeredStates.push_back(&state->Numbers);
    }
    std::vector<const void*> registeredObjects;
    for (const TimeDriven* object : bench_.TimeDrivenObjects()) {
      registeredObjects.push_back(object->Moves());
    }
    if (!std::is_permutation(states.begin(), states.end(), registeredStates.begin(),
                             registeredStates.end()) ||
        driven != registeredObjects) {
      const std::string text =
          "Internal Error: the parts of model " + model.Name() + " do not agree with its bench";
      FatalError(text);
      throw std::logic_error(text);
    }
    FindPast();
    checked_ = true;
  }

  // Something that sampled blocks remember, and as it was before a run.
  struct Past {
    std::span<std::byte> What;
    std::array<std::byte, sizeof(double)> Before{};

    void Note() { Copy(Before.data(), What.data()); }
    void Restore() { Copy(What.data(), Before.data()); }

   private:
    void Copy(std::byte* to, const std::byte* from) const {
      if (What.size() == sizeof(double)) [[likely]] {
        std::memcpy(to, from, sizeof(double));
      } else {
        std::memcpy(to, from, What.size());
      }
    }
  };

  bool checked_ = false;
  SampleTape tape_;
  std::vector<Past> past_;
  double oneByOneUntil_ = 0.0;  // what was raised lies before that time
};

}  // namespace torvane
