#include "drawing/equation_list.h"

#include "drawing/block_graph.h"
#include "drawing/loop_names.h"

namespace torvane::drawing {

using loops::Equation;
using loops::Expression;

namespace {

constexpr std::size_t MostCopied = 100000;

Definition DefinitionOf(const Expression& left) {
  Definition definition;
  definition.Derivative = left.What == Expression::Kind::Call;
  definition.Name = definition.Derivative ? left.Parts.at(0).Text : left.Text;
  return definition;
}

// The left sides within an if, each once: all of its branches give the same.
void AddLeftSides(const Equation& choice, std::vector<const Expression*>& sides) {
  for (const Equation& equation : choice.Branches.front().Equations) {
    if (equation.What == Equation::Kind::Equal) sides.push_back(equation.Sides.data());
    if (equation.What == Equation::Kind::If) AddLeftSides(equation, sides);
  }
}

}  // namespace

EquationList::EquationList(const loops::ModelText& text) {
  for (const loops::Component& component : text.Components) {
    using Prefix = loops::Component::Prefix;
    const bool signal = component.How == Prefix::None || component.How == Prefix::Discrete;
    if (!signal || !component.Value) continue;
    definitions_.push_back({component.Name, false, &*component.Value});
  }
  Add(text.Equations, nullptr);
}

void EquationList::Add(const std::vector<Equation>& equations, const Expression* period) {
  for (const Equation& equation : equations) {
    if (equation.What == Equation::Kind::When) AddWhen(equation);
    if (equation.What == Equation::Kind::If) AddIf(equation, period);
    if (equation.What != Equation::Kind::Equal) continue;
    Definition definition = DefinitionOf(equation.Sides[0]);
    definition.Value = &equation.Sides[1];
    definition.Period = period;
    definitions_.push_back(definition);
  }
}

void EquationList::AddWhen(const Equation& when) {
  const loops::Branch& branch = when.Branches.front();
  const Expression& condition = *branch.Condition;
  if (condition.What == Expression::Kind::Call && condition.Text == "sample") {
    return Add(branch.Equations, &condition.Parts.at(1));
  }
  for (const Equation& equation : branch.Equations) {
    if (equation.What != Equation::Kind::Reinit) continue;
    settings_.push_back({equation.Sides.at(0).Text, &condition, &equation.Sides.at(1)});
  }
}

void EquationList::AddIf(const Equation& choice, const Expression* period) {
  std::vector<const Expression*> sides;
  AddLeftSides(choice, sides);
  for (const Expression* const left : sides) {
    Definition definition = DefinitionOf(*left);
    made_.push_back(ValueIn(choice, *left));
    definition.Value = &made_.back();
    definition.Period = period;
    definitions_.push_back(definition);
  }
}

Expression EquationList::ValueIn(const Equation& choice, const Expression& left) {
  std::vector<Expression> parts;
  for (const loops::Branch& branch : choice.Branches) {
    if (branch.Condition) {
      Count(*branch.Condition);
      parts.push_back(*branch.Condition);
    }
    parts.push_back(ValueIn(branch.Equations, left));
  }
  return {Expression::Kind::If, choice.Where, "if", std::move(parts)};
}

Expression EquationList::ValueIn(const std::vector<Equation>& equations, const Expression& left) {
  for (const Equation& equation : equations) {
    if (equation.What == Equation::Kind::Equal && Same(equation.Sides[0], left)) {
      Count(equation.Sides[1]);
      return equation.Sides[1];
    }
    if (equation.What != Equation::Kind::If) continue;
    std::vector<const Expression*> sides;
    AddLeftSides(equation, sides);
    for (const Expression* const side : sides) {
      if (Same(*side, left)) return ValueIn(equation, left);
    }
  }
  throw DrawingFault("not every branch of an if gives the same signals");
}

void EquationList::Count(const Expression& copied) {
  if (++copied_ > MostCopied) throw DrawingFault("the equations within if are too large to draw");
  for (const Expression& part : copied.Parts) Count(part);
}

}  // namespace torvane::drawing
