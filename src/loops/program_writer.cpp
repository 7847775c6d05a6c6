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
  if (AssignLimit(target, term)) return;
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

// if a > b then b elseif a < c then c else a, as a limit is mostly written.
bool ProgramWriter::AssignLimit(int target, const Term& term) {
  const std::vector<Term>& parts = term.Parts;
  constexpr std::size_t Parts = 5;
  const auto asks = [](const Term& condition, const Term& smaller, const Term& larger) {
    return !condition.IsLeaf() && condition.How == Operation::Less &&
           condition.Parts[0] == smaller && condition.Parts[1] == larger;
  };
  if (parts.size() != Parts) return false;
  const Term& above = parts[1];
  const Term& below = parts[3];
  const Term& value = parts[4];
  if (!above.IsLeaf() || !below.IsLeaf() || !value.IsLeaf() || !asks(parts[0], above, value) ||
      !asks(parts[2], value, below)) {
    return false;
  }
  Write(LimitHandler(), target, value.Register, above.Register, below.Register);
  return true;
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
