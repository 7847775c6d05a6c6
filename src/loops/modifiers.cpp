#include <algorithm>
#include <cmath>

#include "core/names.h"
#include "loops/checker.h"

// What is read from the brackets of a declaration.

namespace torvane::loops {

using Kind = Expression::Kind;

void Checker::RefuseModifiersBut(const std::vector<Modifier>& modifiers,
                                 const std::vector<std::string>& known, const std::string& of) {
  for (const Modifier& modifier : modifiers) {
    if (std::find(known.begin(), known.end(), modifier.Name) == known.end()) {
      problems_.Error(modifier.Where, UnknownNameText("word in " + of, modifier.Name, known));
    }
    if (Find(modifiers, modifier.Name) != &modifier) {
      problems_.Error(modifier.Where, Quoted(modifier.Name) + " is given twice");
    }
  }
}

std::optional<double> Checker::Literal(const Term& term) const {
  if (term.IsLeaf()) {
    const auto found = std::find_if(plan_->Numbers.begin(), plan_->Numbers.end(),
                                    [&](const auto& n) { return n.first == term.Register; });
    if (found == plan_->Numbers.end()) return {};
    return found->second;
  }
  if (term.How > Operation::NotEqual) return {};
  std::vector<double> values;
  for (const Term& part : term.Parts) {
    const std::optional<double> value = Literal(part);
    if (!value) return {};
    values.push_back(*value);
  }
  return Apply(term.How, values.front(), values.size() > 1 ? values[1] : 0.0);
}

std::optional<double> Checker::LiteralOf(const std::vector<Modifier>& modifiers,
                                         const std::string& name) {
  const Modifier* const modifier = Find(modifiers, name);
  if (!modifier || !modifier->Value) return {};
  Context context;
  context.ConstantOnly = true;
  const Term term = Resolve(*modifier->Value, context);
  if (term.What == Term::Type::Unknown) return {};
  const std::optional<double> value = Literal(term);
  if (!value || term.What != Term::Type::Number || !std::isfinite(*value)) {
    problems_.Error(modifier->Value->Where, Quoted(name) + " needs a number");
    return {};
  }
  return value;
}

std::string Checker::TextOf(const std::vector<Modifier>& modifiers, const std::string& name) {
  const Modifier* const modifier = Find(modifiers, name);
  if (!modifier || !modifier->Value) return {};
  if (modifier->Value->What == Kind::String) return modifier->Value->Text;
  problems_.Error(modifier->Value->Where, Quoted(name) + " needs a text in \" \"");
  return {};
}

bool Checker::TruthOf(const std::vector<Modifier>& modifiers, const std::string& name) {
  const Modifier* const modifier = Find(modifiers, name);
  if (!modifier || !modifier->Value) return false;
  if (modifier->Value->What == Kind::Truth) return modifier->Value->Value != 0.0;
  problems_.Error(modifier->Value->Where, Quoted(name) + " needs true or false");
  return false;
}

std::optional<Unit> Checker::UnitOf(const Component& component) {
  const Modifier* const unit = Find(component.Modifiers, "unit");
  if (!unit || !unit->Value || unit->Value->What != Kind::String) return {};
  return ParseUnit(unit->Value->Text);
}

// The name under which instruments, constants and files know it.
std::string Checker::ShownName(const Component& component) {
  const Modifier* const vendor = Find(component.Annotation, "__Torvane");
  if (!vendor) return component.Name;
  const std::string name = TextOf(vendor->Inside, "name");
  if (name.empty()) return component.Name;
  const bool storable = name.front() != ' ' && name.back() != ' ' &&
                        std::all_of(name.begin(), name.end(), [](char c) {
                          return static_cast<unsigned char>(c) >= ' ' && c != ',';
                        });
  if (storable) return name;
  problems_.Error(vendor->Where, "a name must have no comma and no blanks at its ends");
  return component.Name;
}

}  // namespace torvane::loops
