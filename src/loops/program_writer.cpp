#include "loops/program_writer.h"

#include <utility>

namespace torvane::loops {

void ProgramWriter::Write(Instruction::Handler run, int d, int a, int b, int c) {
  program_.push_back({run, d, a, b, c});
}

void ProgramWriter::Add(Instruction::Handler run, int d, int a) {
  Write(run, d, a);
}

Program ProgramWriter::Take() {
  Write(EndHandler(), 0, 0);
  return std::move(program_);
}

int ProgramWriter::Leaf(const Term& term) {
  if (term.IsLeaf()) return term.Register;
  const int between = registers_++;
  Assign(between, term);
  return between;
}

void ProgramWriter::Assign(int target, const Term& term) {
  if (term.IsLeaf()) {
    if (term.Register != target) Write(MoveHandler(), target, term.Register);
  } else if (IsArithmetic(term.How)) {
    AssignArithmetic(target, term);
  } else if (term.How >= Operation::Not) {
    AssignIf(target, term);
  } else {
    const int first = Leaf(term.Parts[0]);
    const int second = term.Parts.size() > 1 ? Leaf(term.Parts[1]) : 0;
    Write(HandlerOf(term.How), target, first, second);
  }
}

// Two operations are one instruction where one works on the other's result.
void ProgramWriter::AssignArithmetic(int target, const Term& term) {
  const auto fuses = [](const Term& part) { return !part.IsLeaf() && IsArithmetic(part.How); };
  const bool left = fuses(term.Parts[0]);
  if (!left && !fuses(term.Parts[1])) {
    const int first = Leaf(term.Parts[0]);
    Write(HandlerOf(term.How), target, first, Leaf(term.Parts[1]));
    return;
  }
  const Term& inner = term.Parts[left ? 0 : 1];
  const int first = Leaf(inner.Parts[0]);
  const int second = Leaf(inner.Parts[1]);
  const int other = Leaf(term.Parts[left ? 1 : 0]);
  Write(FusedHandler(inner.How, term.How, left), target, first, second, other);
}

// Of what chooses: an if, and a truth that is to be a number.
void ProgramWriter::AssignIf(int target, const Term& term) {
  if (term.How != Operation::If) {
    Jumps no;
    Jumps end;
    JumpOn(term, false, no);
    Write(TruthHandler(true), target, 0);
    end.push_back(program_.size());
    Write(JumpHandler(), 0, 0);
    Land(no);
    Write(TruthHandler(false), target, 0);
    Land(end);
    return;
  }
  Jumps end;
  const std::size_t last = term.Parts.size() - 1;
  for (std::size_t i = 0; i < last; i += 2) {
    Jumps next;
    JumpOn(term.Parts[i], false, next);
    Assign(target, term.Parts[i + 1]);
    end.push_back(program_.size());
    Write(JumpHandler(), 0, 0);
    Land(next);
  }
  Assign(target, term.Parts[last]);
  Land(end);
}

void ProgramWriter::JumpOn(const Term& condition, bool when, Jumps& jumps) {
  if (!condition.IsLeaf()) {
    if (condition.How == Operation::Not) return JumpOn(condition.Parts[0], !when, jumps);
    if (condition.How == Operation::And || condition.How == Operation::Or) {
      return JumpOnBoth(condition, when, jumps);
    }
    if (IsComparison(condition.How)) {
      const int first = Leaf(condition.Parts[0]);
      const int second = Leaf(condition.Parts[1]);
      jumps.push_back(program_.size());
      Write(JumpHandler(condition.How, when), 0, first, second);
      return;
    }
  }
  const int value = Leaf(condition);
  jumps.push_back(program_.size());
  Write(TruthJumpHandler(when), 0, value);
}

void ProgramWriter::JumpOnBoth(const Term& condition, bool when, Jumps& jumps) {
  // One part alone can decide for false in "and", for true in "or".
  const bool decides = condition.How == Operation::Or;
  if (when == decides) {
    JumpOn(condition.Parts[0], when, jumps);
    JumpOn(condition.Parts[1], when, jumps);
    return;
  }
  Jumps stay;
  JumpOn(condition.Parts[0], decides, stay);
  JumpOn(condition.Parts[1], when, jumps);
  Land(stay);
}

void ProgramWriter::Land(const Jumps& jumps) {
  for (const std::size_t jump : jumps) {
    program_[jump].D = static_cast<std::int32_t>(program_.size() - jump);
  }
}

void ProgramWriter::Reinit(int state, const Term& condition, const Term& term) {
  Jumps end;
  JumpOn(condition, false, end);
  const int value = Leaf(term);
  Write(ReinitHandler(), state, value);
  Land(end);
}

void ProgramWriter::BeginGuard(int clock) {
  guard_.push_back(program_.size());
  Write(SkipUnlessDueHandler(), 0, clock);
}

void ProgramWriter::EndGuard() {
  Land(guard_);
  guard_.clear();
}

}  // namespace torvane::loops
