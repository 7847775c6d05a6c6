#include <algorithm>
#include <cmath>
#include <set>

#include "core/names.h"
#include "loops/checker.h"

// What is read from the brackets of a declaration.

namespace torvane::loops {

using Kind = Expression::Kind;

void Checker::RefuseModifiersBut(const std::vector<Modifier>& modifiers, const Words& known,
                                 std::string_view of) {
  for (const Modifier& modifier : modifiers) {
    if (std::find(known.begin(), known.end(), modifier.Name) != known.end()) continue;
    problems_.Unknown(modifier.Where, "word in " + std::string(of), modifier.Name,
                      [&] { return std::vector<std::string>(known.begin(), known.end()); });
  }
  RefuseTwice(modifiers);
}

void Checker::RefuseTwice(const std::vector<Modifier>& modifiers) {
  std::set<std::string_view> seen;
  for (const Modifier& modifier : modifiers) {
    if (seen.insert(modifier.Name).second) continue;
    problems_.Error(modifier.Where, Quoted(modifier.Name) + " is given twice");
  }
}

// Other tools' annotations are theirs, but for what looks like one that was meant for this one.
void Checker::CheckAnnotation(const std::vector<Modifier>& annotation, Words known,
                              std::string_view of, const Words& words) {
  known.emplace_back("__Torvane");
  for (const Modifier& modifier : annotation) {
    const bool foreign =
        modifier.Name.starts_with("__") && !Lower(modifier.Name).starts_with("__tor");
    if (foreign || std::find(known.begin(), known.end(), modifier.Name) != known.end()) continue;
    problems_.Unknown(
        modifier.Where, "annotation", modifier.Name,
        [&] { return std::vector<std::string>(known.begin(), known.end()); }, true);
  }
  RefuseTwice(annotation);
  if (const Modifier* const vendor = Find(annotation, "__Torvane")) {
    RefuseModifiersBut(vendor->Inside, words, of);
  }
}

void Checker::DoubtLimits(const Component& component, const std::string& why) {
  for (const char* const limit : {"min", "max"}) {
    const Modifier* const given = Find(component.Modifiers, limit);
    if (given) problems_.Warn(given->Where, std::string(limit) + " limits nothing: " + why);
  }
}

std::optional<double> Checker::Literal(const Term& term) const {
  if (term.IsLeaf()) {
    // They were given their registers one after the other.
    const auto found = std::lower_bound(plan_->Numbers.begin(), plan_->Numbers.end(), term.Register,
                                        [](const auto& n, int reg) { return n.first < reg; });
    if (found == plan_->Numbers.end() || found->first != term.Register) return {};
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
  std::string name = TextOf(vendor->Inside, "name");
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
