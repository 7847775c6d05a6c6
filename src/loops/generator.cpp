#include "loops/generator.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "loops/program_writer.h"

namespace torvane::loops {

namespace {

// The same for terms that are the same, and hardly ever for others.
std::size_t Likeness(const Term& term) {
  constexpr std::size_t Spread = 0x9e3779b97f4a7c15;
  auto sum = static_cast<std::size_t>(term.Register) * Spread + static_cast<std::size_t>(term.How);
  for (const Term& part : term.Parts) sum = (sum ^ (sum >> 29U)) * Spread + Likeness(part);
  return sum;
}

/// How often a value may change.
enum class Pace { Run, Step, Evaluation };

class Generator {
 public:
  explicit Generator(LoopPlan& plan) : plan_(plan) {
    for (const auto& [reg, value] : plan.Numbers) SetPace(reg, Pace::Run);
    for (const LoopPlan::Constant& constant : plan.Constants) {
      SetPace(constant.Register, Pace::Run);
    }
    for (const LoopPlan::Source& source : plan.Sources) SetPace(source.Register, Pace::Step);
  }

  void Write(const std::vector<Node>& constants, const std::vector<Node>& nodes,
             const std::vector<std::pair<int, int>>& previous) {
    for (const Node& node : constants) {
      atRun_.Assign(node.Target, node.Value);
      SetPace(node.Target, Pace::Run);
    }
    for (const auto& [reg, kept] : previous) whole_.Add(MoveHandler(), kept, reg);
    for (const Node& node : nodes) WriteNode(node);
    Guard(-1);
    WriteUpdates();
    plan_.AtRun = atRun_.Take();
    plan_.AtStep = atStep_.Take();
    plan_.Equations = whole_.Take();
    const Program updates = updates_.Take();
    plan_.Evaluation = Joined(plan_.Equations, updates);
    plan_.Between = Joined(between_.Take(), updates);
  }

 private:
  static Program Joined(Program first, const Program& second) {
    first.pop_back();
    first.insert(first.end(), second.begin(), second.end());
    return first;
  }

  Pace PaceOf(int reg) const {
    const auto index = static_cast<std::size_t>(reg);
    return index < paces_.size() ? paces_[index] : Pace::Evaluation;
  }
  void SetPace(int reg, Pace pace) {
    const auto index = static_cast<std::size_t>(reg);
    if (index >= paces_.size()) paces_.resize(index + 1, Pace::Evaluation);
    paces_[index] = pace;
  }
  Pace PaceOf(const Term& term) const {
    if (term.IsLeaf()) return PaceOf(term.Register);
    Pace pace = Pace::Run;
    for (const Term& part : term.Parts) pace = std::max(pace, PaceOf(part));
    return pace;
  }

  // The term with parts that change less often replaced by registers that are written then. What is
  // chosen by a condition stays where it is chosen, with the faults that it may have.
  Term Hoisted(const Term& term, Pace own) {
    if (term.IsLeaf()) return term;
    const Pace pace = PaceOf(term);
    if (pace < own) return Term::Of(HoistedInto(term, pace), term.What);
    Term kept = term;
    for (Term& part : kept.Parts) part = Hoisted(part, own);
    return kept;
  }

  int HoistedInto(const Term& term, Pace pace) {
    const auto [first, last] = hoisted_.equal_range(Likeness(term));
    for (auto known = first; known != last; ++known) {
      if (known->second.first == term) return known->second.second;
    }
    const int reg = plan_.Registers++;
    hoisted_.emplace(Likeness(term), std::pair(term, reg));
    if (pace == Pace::Run) {
      atRun_.Assign(reg, term);
    } else {
      atStep_.Assign(reg, Hoisted(term, pace));
    }
    SetPace(reg, pace);
    return reg;
  }

  void WriteNode(const Node& node) {
    if (node.Clock >= 0) {
      for (const int reg : node.Gives) clocks_[reg] = node.Clock;
    }
    if (node.What == Node::Kind::Output) return WriteOutput(node);
    const Pace pace = PaceOf(node.Value);
    if (node.What == Node::Kind::Assign && node.Clock < 0 && pace < Pace::Evaluation) {
      if (pace == Pace::Run) {
        atRun_.Assign(node.Target, node.Value);
        KeepThroughReset(node.Target);
      } else {
        atStep_.Assign(node.Target, Hoisted(node.Value, Pace::Step));
      }
      SetPace(node.Target, pace);
      return;
    }
    const Term value = Hoisted(node.Value, Pace::Evaluation);
    const bool reinit = node.What == Node::Kind::Reinit;
    if (!reinit && node.Clock < 0) {
      if (const int clock = OnlyClockOf(node); clock >= 0) return WriteSampled(node, clock);
    }
    const Term condition = reinit ? Hoisted(node.Condition, Pace::Evaluation) : Term();
    const auto write = [&](ProgramWriter& writer) {
      if (reinit) {
        writer.Reinit(node.Target, condition, value);
      } else {
        writer.Assign(node.Target, value);
      }
    };
    Guard(node.Clock);
    write(whole_);
    if (node.Clock < 0) write(between_);
  }

  // What is computed once a run starts with what it is.
  void KeepThroughReset(int reg) {
    for (LoopPlan::Signal& signal : plan_.Signals) {
      if (signal.Register == reg && signal.State < 0) signal.Start = reg;
    }
  }

  // The clock at whose samples alone the node's value can change; -1 when there is more.
  int OnlyClockOf(const Node& node) const {
    int only = -1;
    for (const int reg : node.Needs) {
      if (PaceOf(reg) < Pace::Evaluation) continue;
      const auto found = clocks_.find(reg);
      if (found == clocks_.end() || (only >= 0 && found->second != only)) return -1;
      only = found->second;
    }
    return only;
  }

  // At the samples, and at the step's beginning in case none has come since a reset.
  void WriteSampled(const Node& node, int clock) {
    atStep_.Assign(node.Target, Hoisted(node.Value, Pace::Step));
    Guard(clock);
    whole_.Assign(node.Target, Hoisted(node.Value, Pace::Evaluation));
    clocks_[node.Target] = clock;
  }

  void WriteOutput(const Node& node) {
    Guard(node.Clock);
    const auto handler = plan_.Blocks[static_cast<std::size_t>(node.Block)].Type->Code.Output;
    whole_.Add(handler, 0, node.Block);
    if (node.Clock < 0) between_.Add(handler, 0, node.Block);
  }

  // Neighbours of one clock share a look at it.
  void Guard(int clock) {
    if (clock == guarded_) return;
    if (guarded_ >= 0) whole_.EndGuard();
    if (clock >= 0) whole_.BeginGuard(clock);
    guarded_ = clock;
  }

  void WriteUpdates() {
    for (std::size_t i = 0; i < plan_.Blocks.size(); ++i) {
      const LoopPlan::Block& block = plan_.Blocks[i];
      const int index = static_cast<int>(i);
      if (!block.Type->Moves()) continue;
      const bool sampled = block.Type->When == BlockType::Timing::Sampled;
      if (sampled) updates_.BeginGuard(block.Clock);
      if (block.Type->Copies) {
        updates_.Add(MoveHandler(), block.Numbers.Outputs.front(), block.Numbers.Inputs.front());
      } else {
        updates_.Add(block.Type->Code.Update, 0, index);
      }
      if (sampled) updates_.EndGuard();
    }
  }

  LoopPlan& plan_;
  ProgramWriter atRun_{plan_.Registers};
  ProgramWriter atStep_{plan_.Registers};
  ProgramWriter between_{plan_.Registers};
  ProgramWriter whole_{plan_.Registers};
  ProgramWriter updates_{plan_.Registers};
  std::vector<Pace> paces_;
  std::unordered_multimap<std::size_t, std::pair<Term, int>> hoisted_;  ///< by likeness
  std::map<int, int> clocks_;  ///< by register: at whose samples alone it changes
  int guarded_ = -1;
};

}  // namespace

void Generate(LoopPlan& plan, const std::vector<Node>& constants, const std::vector<Node>& nodes,
              const std::vector<std::pair<int, int>>& previous) {
  Generator(plan).Write(constants, nodes, previous);
}

}  // namespace torvane::loops
