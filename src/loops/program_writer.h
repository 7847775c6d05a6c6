#pragma once

#include <vector>

#include "loops/instruction.h"
#include "loops/term.h"

namespace torvane::loops {

/// Writes instructions for terms. Registers for what lies between are taken from a counter.
class ProgramWriter {
 public:
  explicit ProgramWriter(int& registers) : registers_(registers) {}

  /// The register takes the term.
  void Assign(int target, const Term& term);
  /// While the condition holds, the state takes the term at the end of the step.
  void Reinit(int state, const Term& condition, const Term& term);
  void Add(Instruction::Handler run, int d = 0, int a = 0);
  /// What is written until EndGuard happens only when the clock has a sample due.
  void BeginGuard(int clock);
  void EndGuard();

  Program Take();

 private:
  /// Jumps that lead to a place that is not written yet.
  using Jumps = std::vector<std::size_t>;

  int Leaf(const Term& term);
  void AssignIf(int target, const Term& term);
  bool AssignLimit(int target, const Term& term);
  void AssignArithmetic(int target, const Term& term);
  /// Jumps when the condition gives `when`, else goes on.
  void JumpOn(const Term& condition, bool when, Jumps& jumps);
  void JumpOnBoth(const Term& condition, bool when, Jumps& jumps);
  void Land(const Jumps& jumps);
  void Write(Instruction::Handler run, int d, int a = 0, int b = 0, int c = 0);

  int& registers_;
  Program program_;
  Jumps guard_;
};

}  // namespace torvane::loops
