#include "drawing/loop_names.h"

#include <algorithm>

namespace torvane::drawing {

using loops::Component;
using loops::Expression;

LoopNames::LoopNames(const loops::ModelText& text, const loops::LoopPlan& plan) {
  for (const Component& component : text.Components) components_[component.Name] = &component;
  for (const auto& constant : plan.Constants) changed_.insert(constant.Name);
}

const Component* LoopNames::Find(const std::string& name) const {
  const auto found = components_.find(name);
  return found == components_.end() ? nullptr : found->second;
}

std::string LoopNames::Shown(const Component& component) {
  const loops::Modifier* const vendor = loops::Find(component.Annotation, "__Torvane");
  const loops::Modifier* const name = vendor ? loops::Find(vendor->Inside, "name") : nullptr;
  return name && name->Value ? name->Value->Text : component.Name;
}

bool LoopNames::IsSignal(const Component& component) const {
  const auto how = component.How;
  return component.Type == "Real" &&
         (how == Component::Prefix::None || how == Component::Prefix::Discrete);
}

bool LoopNames::IsChanged(const Component& component) const {
  return component.How == Component::Prefix::Parameter && !component.Final &&
         changed_.contains(Shown(component));
}

bool LoopNames::IsConstant(const Expression& expression) const {
  if (expression.What == Expression::Kind::Name) {
    const std::string& name = expression.Text;
    if (name == "time") return false;
    const Component* const component = Find(name);
    if (component) return !IsSignal(*component);
    return !Find(name.substr(0, name.find('.')));  // of a block; else pi or a choice
  }
  if (expression.What == Expression::Kind::Call &&
      (expression.Text == "der" || expression.Text == "pre" || expression.Text == "delay")) {
    return false;
  }
  return std::all_of(expression.Parts.begin(), expression.Parts.end(),
                     [&](const Expression& part) { return IsConstant(part); });
}

void LoopNames::AddMentioned(const Expression& expression, std::vector<std::string>& names) const {
  std::set<std::string> seen;
  AddMentioned(expression, names, seen);
}

void LoopNames::AddMentioned(const Expression& expression, std::vector<std::string>& names,
                             std::set<std::string>& seen) const {
  for (const Expression& part : expression.Parts) AddMentioned(part, names, seen);
  if (expression.What != Expression::Kind::Name) return;
  const Component* const component = Find(expression.Text);
  if (!component || IsSignal(*component) || !seen.insert(expression.Text).second) return;
  if (!IsChanged(*component)) {
    if (component->Value) AddMentioned(*component->Value, names, seen);
    return;
  }
  const std::string shown = Shown(*component);
  if (std::find(names.begin(), names.end(), shown) == names.end()) names.push_back(shown);
}

bool Same(const Expression& a, const Expression& b) {
  return a.What == b.What && a.Text == b.Text && a.Value == b.Value &&
         std::equal(a.Parts.begin(), a.Parts.end(), b.Parts.begin(), b.Parts.end(), Same);
}

}  // namespace torvane::drawing
