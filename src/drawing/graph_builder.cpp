#include "drawing/graph_builder.h"

#include <algorithm>

#include "drawing/block_looks.h"
#include "drawing/patterns.h"
#include "loops/block_type.h"

namespace torvane::drawing {

using loops::Component;
using loops::Expression;

namespace {

constexpr std::size_t LongestRemark = 22;

void AddSlopes(const Expression& e, std::set<std::string>& states) {
  if (e.What == Expression::Kind::Call && e.Text == "der") states.insert(e.Parts.at(0).Text);
  for (const Expression& part : e.Parts) AddSlopes(part, states);
}

Line Quiet(const std::string& text) {
  return {{text, Run::Kind::Quiet}};
}

bool IsSource(const Component& component) {
  return component.Type == loops::CommandName || component.Type == loops::GeneratorName;
}

}  // namespace

GraphBuilder::GraphBuilder(const loops::ModelText& text, const loops::LoopPlan& plan)
    : text_(text), plan_(plan), names_(text, plan), equations_(text) {
  graph_.Name = plan.Name;
  graph_.Description = plan.Description;
  if (!plan.Instruments.Pairs.empty()) graph_.Response = plan.Instruments.Pairs.front().Output;
  for (const Definition& definition : equations_.Definitions()) {
    AddSlopes(*definition.Value, slopesUsed_);
    if (definition.Period) sampled_.insert(definition.Name);
  }
  for (const Component& component : text.Components) {
    for (const loops::Modifier& modifier : component.Modifiers) {
      if (modifier.Value) AddSlopes(*modifier.Value, slopesUsed_);
    }
  }
}

BlockGraph GraphBuilder::Build() {
  DeclareOutputs();
  for (const Component& component : text_.Components) BindBlock(component);
  for (const Definition& definition : equations_.Definitions()) Define(definition);
  TellSettings();
  Resolve();
  return std::move(graph_);
}

void GraphBuilder::DeclareOutputs() {
  for (const Component& component : text_.Components) {
    if (names_.IsSignal(component)) {
      outputs_[component.Name] = NewOutput(-1, {});
      outputs_["der(" + component.Name + ")"] = NewOutput(-1, {});
    } else {
      AddBlock(component);
    }
  }
}

void GraphBuilder::AddBlock(const Component& component) {
  if (IsSource(component)) {
    outputs_[component.Name + ".y"] = AddOne(SourceNode(component));
    const int node = static_cast<int>(graph_.Nodes.size()) - 1;
    if (component.Type == loops::CommandName) graph_.Command = node;
    return;
  }
  const loops::BlockType* const type = loops::FindBlockType(component.Type);
  if (!type) return;
  const int node = Add(NodeOf(component, *type, names_));
  const bool several = type->Outputs.size() > 1;
  for (const std::string_view output : type->Outputs) {
    const std::string name(output);
    outputs_[component.Name + "." + name] = NewOutput(node, several ? name : "");
  }
}

void GraphBuilder::BindBlock(const Component& component) {
  const loops::BlockType* const type = loops::FindBlockType(component.Type);
  if (!type || IsSource(component)) return;
  const auto block =
      static_cast<std::size_t>(graph_
                                   .Outputs[static_cast<std::size_t>(outputs_.at(
                                       component.Name + "." + std::string(type->Outputs[0])))]
                                   .Node);
  clock_ = graph_.Nodes[block].Clock;
  const bool several = type->Inputs.size() > 1;
  for (const loops::BlockInput& input : type->Inputs) {
    const std::string name(input.Name);
    const loops::Modifier* const given = loops::Find(component.Modifiers, name);
    if (!given || !given->Value) continue;
    const int from = Value(*given->Value);
    graph_.Nodes[block].Inputs.push_back({from, several ? name : ""});
  }
}

void GraphBuilder::Define(const Definition& definition) {
  clock_.clear();
  if (definition.Period) {
    for (const Run& run : Formula(*definition.Period, names_)) clock_ += run.Text;
    // A period without a name is a clock as well.
    if (clock_.empty()) clock_ = "?";
  }
  if (definition.Derivative) {
    if (!IntegrateLag(definition)) Integrate(definition);
  } else if (!definition.Period || !Accumulate(definition)) {
    Assign(definition);
  }
}

void GraphBuilder::Assign(const Definition& definition) {
  const Expression& value = *definition.Value;
  int from = Value(value);
  const bool bare = value.IsName() || (value.What == Expression::Kind::Call && value.Text == "pre");
  if (definition.Period && bare && !IsSampled(value)) {
    Node sampler;
    sampler.What = Node::Sign::Sampler;
    sampler.Inputs.push_back({from, {}});
    from = AddOne(std::move(sampler));
  }
  Name(outputs_.at(definition.Name), from);
}

// "x = pre(x) + T u", perhaps only while something holds.
bool GraphBuilder::Accumulate(const Definition& definition) {
  const auto isIdle = [&](const Expression& e) { return IsCallOf(e, "pre", definition.Name); };
  const auto held = AsHeld(*definition.Value, isIdle);
  const auto terms = AsRunningSum(definition.Name, held ? *held->Value : *definition.Value);
  if (!terms) return false;
  Node node;
  node.What = Node::Sign::Fraction;
  Factors gain;
  int from = -1;
  if (terms->size() == 1) {
    gain = FactorsOf(*terms->front().second, names_);
    const bool one = gain.Signals.size() == 1 && gain.Divisors.empty();
    if (one && !terms->front().first) from = Value(*gain.Signals[0]);
  }
  if (from < 0) {
    gain = {};
    from = SumOf(*terms);
  }
  Line above = gain.Numerator(names_);
  if (gain.IsPlain()) {
    above = {{"z", Run::Kind::Plain}};
  } else {
    Append(above, {{" z", Run::Kind::Plain}});
  }
  Line below{{"z − 1", Run::Kind::Plain}};
  if (!gain.Below.empty() || (gain.Number == 1.0 && gain.Divisor != 1.0)) {
    below = gain.Denominator(names_, "(z − 1)");
  }
  node.Texts = {above, below};
  Mention(node, gain);
  node.Inputs.push_back({from, {}});
  if (held) {
    node.Remarks.push_back(Quiet(held->Otherwise ? "waits while" : "while"));
    node.Remarks.push_back(Told(*held->Condition, LongestRemark));
    names_.AddMentioned(*held->Condition, node.Aside);
    AddInputs(node, *held->Condition);
  }
  Name(outputs_.at(definition.Name), AddOne(std::move(node)));
  return true;
}

void GraphBuilder::Integrate(const Definition& definition) {
  Node node;
  node.What = Node::Sign::Fraction;
  node.IsPlant = true;
  const int slope = outputs_.at("der(" + definition.Name + ")");
  const auto isIdle = [](const Expression& e) {
    return e.What == Expression::Kind::Number && e.Value == 0.0;
  };
  const auto held = AsHeld(*definition.Value, isIdle);
  const Expression& value = held ? *held->Value : *definition.Value;
  const Factors gain = FactorsOf(value, names_);
  const bool merged =
      !UsesSlope(definition.Name) && gain.Signals.size() == 1 && gain.Divisors.empty();
  int from;
  if (merged) {
    from = Value(*gain.Signals[0]);
    node.Texts = {gain.Numerator(names_), gain.Denominator(names_, "s")};
    Mention(node, gain);
  } else {
    from = Value(held && UsesSlope(definition.Name) ? *definition.Value : value);
    node.Texts = {{{"1", Run::Kind::Plain}}, {{"s", Run::Kind::Plain}}};
  }
  Name(slope, from);
  node.Inputs.push_back({from, {}});
  if (held && !UsesSlope(definition.Name)) {
    node.Remarks.push_back(Quiet(held->Otherwise ? "waits while" : "while"));
    node.Remarks.push_back(Told(*held->Condition, LongestRemark));
    names_.AddMentioned(*held->Condition, node.Aside);
    AddInputs(node, *held->Condition);
  }
  Name(outputs_.at(definition.Name), AddOne(std::move(node)));
}

// "der(x) = (u - x) / T" or "der(x) = k (u - x)".
bool GraphBuilder::IntegrateLag(const Definition& definition) {
  if (UsesSlope(definition.Name)) return false;
  const Factors gain = FactorsOf(*definition.Value, names_);
  if (gain.Signals.size() != 1 || !gain.Divisors.empty() || gain.Number < 0.0) return false;
  auto terms = TermsOf(*gain.Signals[0]);
  const auto own = std::find_if(terms.begin(), terms.end(), [&](const auto& term) {
    return term.first && term.second->IsName() && term.second->Text == definition.Name;
  });
  if (terms.size() != 2 || own == terms.end()) return false;
  terms.erase(own);
  if (terms[0].first || names_.IsConstant(*terms[0].second)) return false;
  Node node;
  node.What = Node::Sign::Fraction;
  const Line above = gain.Numerator(names_);
  Line below = gain.Denominator(names_, "s");
  Append(below, {{" + ", Run::Kind::Plain}});
  Append(below, above);
  node.Texts = {above, below};
  Mention(node, gain);
  node.Inputs.push_back({Value(*terms[0].second), {}});
  Name(outputs_.at(definition.Name), AddOne(std::move(node)));
  return true;
}

// A state that jumps: told once at its integrator, with the constants that decide it.
void GraphBuilder::TellSettings() {
  std::set<std::string> told;
  for (const Setting& setting : equations_.Settings()) {
    const auto state = outputs_.find(setting.State);
    if (state == outputs_.end()) continue;
    const int output = Real(state->second);
    const int at = graph_.Outputs[static_cast<std::size_t>(output)].Node;
    if (at < 0) continue;
    Node& node = graph_.Nodes[static_cast<std::size_t>(at)];
    names_.AddMentioned(*setting.Condition, node.Aside);
    names_.AddMentioned(*setting.Value, node.Aside);
    if (!told.insert(setting.State).second) continue;
    node.Remarks.push_back(Quiet("set anew while"));
    node.Remarks.push_back(Told(*setting.Condition, LongestRemark));
  }
}

int GraphBuilder::Add(Node node) {
  if (graph_.Nodes.size() == MostNodes) {
    throw DrawingFault("the loop has more than " + std::to_string(MostNodes) +
                       " blocks and sums; that is too large for a drawing");
  }
  if (!clock_.empty()) node.Clock = clock_;
  graph_.Nodes.push_back(std::move(node));
  return static_cast<int>(graph_.Nodes.size()) - 1;
}

int GraphBuilder::AddOne(Node node) {
  const int index = Add(std::move(node));
  return NewOutput(index, {});
}

int GraphBuilder::NewOutput(int node, const std::string& mark) {
  const int output = static_cast<int>(graph_.Outputs.size());
  graph_.Outputs.push_back({node, mark, {}, -1});
  if (node >= 0) graph_.Nodes[static_cast<std::size_t>(node)].Outputs.push_back(output);
  return output;
}

void GraphBuilder::Name(int output, int as) {
  graph_.Outputs[static_cast<std::size_t>(output)].SameAs = as;
}

int GraphBuilder::Real(int output) const {
  std::size_t left = graph_.Outputs.size();
  for (int next = output; left > 0; --left) {
    output = next;
    next = graph_.Outputs[static_cast<std::size_t>(output)].SameAs;
    if (next < 0) break;
  }
  return output;
}

void GraphBuilder::Resolve() {
  for (Node& node : graph_.Nodes) {
    for (Input& input : node.Inputs) input.From = Real(input.From);
  }
  for (const Component& component : text_.Components) {
    if (!names_.IsSignal(component)) continue;
    const int output = Real(outputs_.at(component.Name));
    graph_.Outputs[static_cast<std::size_t>(output)].Names.push_back(
        {LoopNames::Shown(component), !component.Protected});
  }
}

}  // namespace torvane::drawing
