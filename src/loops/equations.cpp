#include <algorithm>
#include <set>

#include "loops/checker.h"

// What the equation section comes to: one node for each signal.

namespace torvane::loops {

using Kind = Expression::Kind;
using Type = Term::Type;

void Checker::TakeEquations() {
  for (const Component& component : text_.Components) {
    // Real x = value;
    const auto found = symbols_.find(component.Name);
    const bool bound = component.Value && found != symbols_.end() &&
                       found->second.What == Symbol::Kind::Signal &&
                       signals_[found->second.Index].Text == &component;
    if (!bound) continue;
    Equation equation;
    equation.Where = component.Where;
    equation.Sides = {Expression(Kind::Name, component.Where, component.Name), *component.Value};
    TakeEquation(equation);
  }
  for (const Equation& equation : text_.Equations) TakeEquation(equation);
}

void Checker::TakeEquation(const Equation& equation) {
  if (equation.What == Equation::Kind::When) return TakeWhen(equation);
  for (Assignment& assignment : Collect({equation}, {})) Keep(std::move(assignment), -1);
}

void Checker::TakeWhen(const Equation& equation) {
  const Branch& branch = equation.Branches.front();
  const Expression& condition = *branch.Condition;
  if (condition.What == Kind::Call && condition.Text == "sample") {
    if (condition.Parts.size() != 2) {
      problems_.Error(condition.Where, "\"sample\" needs 2 values: sample(start, period)");
      return;
    }
    Context context;
    context.Clock = ClockOf(condition.Parts[0], condition.Parts[1], condition.Where, true);
    // Without a clock the equations are looked at all the same.
    if (context.Clock < 0) context.Clock = 0;
    for (Assignment& assignment : Collect(branch.Equations, context)) {
      Keep(std::move(assignment), context.Clock);
    }
    return;
  }
  const bool reinits =
      std::all_of(branch.Equations.begin(), branch.Equations.end(),
                  [](const Equation& inner) { return inner.What == Equation::Kind::Reinit; });
  if (!reinits) {
    problems_.Error(equation.Where,
                    "there are no events; \"when\" stands before sample(start, period), or with "
                    "reinit(state, value) alone inside");
    return;
  }
  const Term term = ResolveTruth(condition, {});
  for (const Equation& inner : branch.Equations) TakeReinit(inner, term);
}

void Checker::TakeReinit(const Equation& reinit, const Term& condition) {
  if (reinit.Sides.size() != 2) {
    problems_.Error(reinit.Where, "\"reinit\" needs a state and a value");
    return;
  }
  const Expression& state = reinit.Sides[0];
  const auto found = state.IsName() ? symbols_.find(state.Text) : symbols_.end();
  const bool isState = found != symbols_.end() && found->second.What == Symbol::Kind::Signal &&
                       signals_[found->second.Index].State >= 0;
  if (!isState) {
    problems_.Error(state.Where, "reinit needs a signal that an equation der(x) = ... integrates");
  }
  Node node;
  node.What = Node::Kind::Reinit;
  node.Value = ResolveNumber(reinit.Sides[1], {});
  if (!isState || node.Value.What == Type::Unknown || condition.What == Type::Unknown) return;
  node.Name = "reinit(" + state.Text + ")";
  node.Where = reinit.Where;
  node.Target = signals_[found->second.Index].State;
  node.Condition = condition;
  AddNeeds(node.Value, node.Needs);
  AddNeeds(condition, node.Needs);
  nodes_.push_back(std::move(node));
}

std::vector<Checker::Assignment> Checker::Collect(const std::vector<Equation>& equations,
                                                  const Context& context) {
  std::vector<Assignment> assignments;
  for (const Equation& equation : equations) {
    switch (equation.What) {
      case Equation::Kind::Equal:
        if (auto assignment = Assign(equation, context)) {
          assignments.push_back(std::move(*assignment));
        }
        break;
      case Equation::Kind::If:
        CollectIf(equation, context, assignments);
        break;
      case Equation::Kind::When:
        problems_.Error(equation.Where, "a \"when\" cannot stand within an if or another when");
        break;
      case Equation::Kind::Reinit:
        problems_.Error(equation.Where, "\"reinit\" stands in a \"when\" with a condition only");
        break;
    }
  }
  return assignments;
}

// Each branch gives the same signals; for each of them that is an if-expression. Conditions are
// computed once: a register holds one that several signals depend on.
void Checker::CollectIf(const Equation& equation, const Context& context,
                        std::vector<Assignment>& assignments) {
  if (equation.Branches.back().Condition) {
    problems_.Error(equation.Where,
                    "this if needs an else: without it nobody knows what its signals are then");
  }
  std::vector<Term> conditions;
  std::vector<std::vector<Assignment>> branches;
  std::set<std::pair<int, std::string>> given;
  for (const Branch& branch : equation.Branches) {
    if (branch.Condition) conditions.push_back(ResolveTruth(*branch.Condition, context));
    branches.push_back(Collect(branch.Equations, context));
    for (const Assignment& one : branches.back()) given.emplace(one.Target, one.Name);
  }
  if (equation.Branches.back().Condition) return;
  if (given.size() > 1) {
    for (Term& condition : conditions) {
      if (condition.What == Type::Unknown || condition.IsLeaf()) continue;
      const int reg = NewRegister();
      Keep({reg, "condition", equation.Where, std::move(condition)}, context.Clock);
      condition = Term::Of(reg, Type::Truth);
    }
  }
  for (const auto& signal : given) {
    const int target = signal.first;
    const std::string& name = signal.second;
    std::vector<Term> parts;
    Place where = equation.Where;
    bool known = true;
    for (std::size_t i = 0; i < branches.size(); ++i) {
      const auto own = std::find_if(branches[i].begin(), branches[i].end(),
                                    [&](const Assignment& one) { return one.Target == target; });
      if (own == branches[i].end()) {
        problems_.Error(equation.Where,
                        "each branch of an if must give the same signals; one of "
                        "them does not give " +
                            Quoted(name));
        known = false;
        break;
      }
      const bool twice = std::any_of(own + 1, branches[i].end(), [&](const Assignment& other) {
        return other.Target == target;
      });
      if (twice) problems_.Error(own->Where, Quoted(name) + " has two equations in one branch");
      if (i == 0) where = own->Where;
      if (i < conditions.size()) {
        known = known && conditions[i].What != Type::Unknown;
        parts.push_back(conditions[i]);
      }
      known = known && own->Value.What != Type::Unknown;
      parts.push_back(std::move(own->Value));
    }
    Term value = known ? Term::Of(Operation::If, Type::Number, std::move(parts)) : Term();
    assignments.push_back({target, name, where, std::move(value)});
  }
}

// A signal with its place among the registers, or that of its slope.
Checker::SignalDraft* Checker::Target(const Expression& left, bool& slope) {
  const bool der = left.What == Kind::Call && left.Text == "der" && left.Parts.size() == 1;
  slope = der;
  const Expression& name = der ? left.Parts.front() : left;
  if (!name.IsName()) {
    const bool second = der && name.What == Kind::Call && name.Text == "der";
    problems_.Error(left.Where, second ? "the slope of a slope needs a signal between: der(x) = v; "
                                         "der(v) = ..."
                                       : "the left side of an equation is a signal alone, or "
                                         "der(signal): solve it for the signal");
    return nullptr;
  }
  const auto found = symbols_.find(name.Text);
  if (found != symbols_.end() && found->second.What == Symbol::Kind::Signal) {
    return &signals_[found->second.Index];
  }
  if (found != symbols_.end() && found->second.What == Symbol::Kind::Wrong) return nullptr;
  if (found != symbols_.end() && found->second.What == Symbol::Kind::Parameter) {
    problems_.Error(name.Where,
                    Quoted(name.Text) + " is a parameter; its value stands at its declaration");
  } else if (found != symbols_.end() || name.Text.find('.') != std::string::npos) {
    problems_.Error(name.Where, "a block's input is bound at its declaration: " +
                                    name.Text.substr(0, name.Text.find('.')) + "(u = ...)");
  } else {
    problems_.Unknown(name.Where, "signal", name.Text, [this] {
      std::vector<std::string> names;
      for (const SignalDraft& signal : signals_) names.push_back(signal.Text->Name);
      return names;
    });
  }
  return nullptr;
}

std::optional<Checker::Assignment> Checker::Assign(const Equation& equation,
                                                   const Context& context) {
  const Expression& left = equation.Sides[0];
  bool slope = false;
  SignalDraft* const signal = Target(left, slope);
  Term value = ResolveNumber(equation.Sides[1], context);
  if (!signal) return {};
  const std::string& name = signal->Text->Name;
  if (slope && context.Clock >= 0) {
    problems_.Error(left.Where, "der(x) cannot stand in a \"when sample\"; sum up there: " + name +
                                    " = pre(" + name + ") + ...");
  }
  if (!slope && signal->State >= 0) {
    problems_.Error(left.Where, Quoted(name) + " is integrated by der(" + name +
                                    ") = ...; it cannot have another equation");
  }
  if (context.Clock < 0 && signal->Text->How == Component::Prefix::Discrete) {
    problems_.Error(left.Where, Quoted(name) +
                                    " is discrete; its equation stands in a \"when "
                                    "sample(start, period)\"");
  }
  std::optional<Unit> dimension = signal->Dimension;
  if (slope && dimension) dimension = dimension->Times(*ParseUnit("s"), -1);
  CompareUnits(dimension, value.Dimension, left.Where, slope ? "der(" + name + ")" : name);
  signal->Defined = true;
  const int target =
      slope ? signal->State + static_cast<int>(plan_->States.size()) : signal->Register;
  return Assignment{target, slope ? "der(" + name + ")" : name, left.Where, std::move(value)};
}

void Checker::Keep(Assignment assignment, int clock) {
  const auto [same, isNew] = assigned_.emplace(assignment.Target, assignment.Where);
  if (!isNew) {
    problems_.Error(assignment.Where, Quoted(assignment.Name) +
                                          " has two equations; the other one is in line " +
                                          std::to_string(same->second.Line));
    return;
  }
  Node node;
  node.Name = std::move(assignment.Name);
  node.Where = assignment.Where;
  node.Target = assignment.Target;
  node.Clock = clock;
  node.Gives = {node.Target};
  AddNeeds(assignment.Value, node.Needs);
  node.Value = std::move(assignment.Value);
  nodes_.push_back(std::move(node));
}

void Checker::FindMissing() {
  for (const SignalDraft& signal : signals_) {
    if (signal.Defined) continue;
    problems_.Error(signal.Text->Where, Quoted(signal.Text->Name) + " has no equation");
  }
}

}  // namespace torvane::loops
