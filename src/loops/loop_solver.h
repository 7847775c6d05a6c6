#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "core/solver.h"
#include "loops/loop_machine.h"

namespace torvane::loops {

class OwnLoop;

/// The general solver's step on a loop's registers: the same operations in the same order and to
/// the bit, without the way through bench and blocks.
class LoopSolver final : public ZelSolver {
 public:
  LoopSolver(ZelBenchTop& bench, double h, OwnLoop& loop, LoopMachine& machine, int maxOrder);

  void RunUntil(double tEnd) override;
  /// The general solver's way, for whoever wants to compare.
  void RunGenerally(double tEnd) { ZelSolver::RunUntil(tEnd); }

 private:
  void Run(double tEnd);
  void CheckNumbers() const;
  template <std::size_t Count>
  double Steps(double t, double tEnd);
  template <std::size_t Count>
  long double Step(double t);
  template <std::size_t Count>
  long double CombineStates();
  long double TakePending(long double size);

  using StepsOf = double (LoopSolver::*)(double, double);
  template <std::size_t... Counts>
  static StepsOf StepsFor(std::size_t states, std::index_sequence<Counts...> known);

  OwnLoop& loop_;
  LoopMachine& machine_;
  std::vector<double> start_;
  std::vector<double> sum_;
  StepsOf steps_;
};

}  // namespace torvane::loops
