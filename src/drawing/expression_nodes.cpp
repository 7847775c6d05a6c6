// How expressions become nodes.

#include <algorithm>

#include "drawing/graph_builder.h"
#include "drawing/patterns.h"
#include "loops/block_type.h"

namespace torvane::drawing {

using loops::Expression;

namespace {

constexpr std::size_t LongestText = 22;
constexpr std::size_t LongestCondition = 22;
constexpr std::size_t MostSummed = 3;

bool IsOneOf(const Expression& e, const char* one, const char* other) {
  return e.What == Expression::Kind::Operator && (e.Text == one || e.Text == other);
}

bool IsZero(const Expression& e) {
  return e.What == Expression::Kind::Number && e.Value == 0.0;
}

// Whether it is "-a" for an "a".
bool IsNegative(const Expression& e, const Expression& of) {
  return e.What == Expression::Kind::Operator && e.Text == "-" && e.Parts.size() == 1 &&
         Same(e.Parts[0], of);
}

}  // namespace

int GraphBuilder::Value(const Expression& e) {
  if (names_.IsConstant(e)) return OfConstant(e);
  if (const auto known = OfPattern(e)) return *known;
  if (e.IsName()) return OfName(e.Text);
  if (e.What == Expression::Kind::Call) return OfCall(e);
  if (e.What == Expression::Kind::If) return OfChoice(e, 0);
  if (IsOneOf(e, "*", "/")) return OfProduct(e);
  if (IsOneOf(e, "+", "-")) return e.Parts.size() == 1 ? OfProduct(e) : OfSum(e);
  if (IsOneOf(e, "^", "^")) return OfPower(e);
  return OfAnything(e);
}

int GraphBuilder::OfName(const std::string& name) {
  const auto found = outputs_.find(name);
  if (found != outputs_.end()) return found->second;
  // The time, which starts as soon as the loop does.
  Node node;
  node.What = Node::Sign::Source;
  node.Texts = {{{name, Run::Kind::Plain}}};
  return outputs_[name] = AddOne(std::move(node));
}

std::optional<int> GraphBuilder::OfPattern(const Expression& e) {
  Node node;
  if (const auto limits = AsLimits(e, names_)) {
    node.What = Node::Sign::Limiter;
    Line remark = {{"±", Run::Kind::Plain}};
    if (IsNegative(*limits->Least, *limits->Most)) {
      Append(remark, Formula(*limits->Most, names_, Binding::Product));
    } else {
      remark = Formula(*limits->Least, names_);
      Append(remark, {{" … ", Run::Kind::Plain}});
      Append(remark, Formula(*limits->Most, names_));
    }
    node.Remarks.push_back(Shortened(remark, LongestCondition));
    Mention(node, *limits->Least);
    Mention(node, *limits->Most);
    node.Inputs.push_back({Value(*limits->Of), {}});
    return AddOne(std::move(node));
  }
  if (const auto steps = AsSteps(e, names_)) {
    node.What = Node::Sign::Quantiser;
    node.Remarks.push_back(Told(*steps->Step, LongestCondition));
    Mention(node, *steps->Step);
    node.Inputs.push_back({Value(*steps->Of), {}});
    return AddOne(std::move(node));
  }
  const auto change = AsChange(e);
  if (change && sampled_.contains(change->Of->Text) && !clock_.empty()) {
    node.What = change->Over ? Node::Sign::Fraction : Node::Sign::Box;
    node.Texts = {{{"1 − z⁻¹", Run::Kind::Plain}}};
    if (change->Over) {
      if (!names_.IsConstant(*change->Over)) return {};
      node.Texts.push_back(Told(*change->Over, LongestText));
      Mention(node, *change->Over);
    }
    node.Inputs.push_back({Value(*change->Of), {}});
    return AddOne(std::move(node));
  }
  return {};
}

int GraphBuilder::OfCall(const Expression& e) {
  if (e.Text == "noEvent" && e.Parts.size() == 1) return Value(e.Parts[0]);
  if (e.Text == "der") return OfName("der(" + e.Parts.at(0).Text + ")");
  if (e.Text == "pre") return OfPrevious(e.Parts.at(0).Text);
  if (e.Text == "delay" && e.Parts.size() == 2) {
    Node node;
    node.IsPlant = true;
    node.Texts = {{{"e⁻ˢᵀ", Run::Kind::Plain}}};
    Line remark{{"T = ", Run::Kind::Plain}};
    Append(remark, Formula(e.Parts[1], names_));
    if (remark.back().Text != "T") node.Remarks.push_back(Shortened(remark, LongestCondition));
    Mention(node, e.Parts[1]);
    node.Inputs.push_back({Value(e.Parts[0]), {}});
    return AddOne(std::move(node));
  }
  return OfFunction(e);
}

// Of what changes within a step too it is what the sample finds.
int GraphBuilder::OfPrevious(const std::string& signal) {
  if (!sampled_.contains(signal)) return OfName(signal);
  const auto known = previous_.find(signal);
  if (known != previous_.end()) return known->second;
  Node node;
  node.Delays = true;
  node.Texts = {{{"z⁻¹", Run::Kind::Plain}}};
  node.Inputs.push_back({OfName(signal), {}});
  return previous_[signal] = AddOne(std::move(node));
}

int GraphBuilder::OfFunction(const Expression& e) {
  Node node;
  Line text{{e.Text == "abs" ? "|" : e.Text + "(", Run::Kind::Plain}};
  const auto inputs = std::count_if(e.Parts.begin(), e.Parts.end(), [&](const Expression& part) {
    return !names_.IsConstant(part);
  });
  for (std::size_t k = 0; k < e.Parts.size(); ++k) {
    const Expression& part = e.Parts[k];
    if (k > 0) Append(text, {{", ", Run::Kind::Plain}});
    if (names_.IsConstant(part)) {
      Append(text, Formula(part, names_));
      Mention(node, part);
      continue;
    }
    std::string input = "u";
    if (inputs > 1) input += std::to_string(node.Inputs.size() + 1);
    Append(text, {{input, Run::Kind::Plain}});
    const int from = Value(part);
    node.Inputs.push_back({from, inputs > 1 ? input : ""});
  }
  Append(text, {{e.Text == "abs" ? "|" : ")", Run::Kind::Plain}});
  node.Texts = {Shortened(text, LongestText)};
  return AddOne(std::move(node));
}

int GraphBuilder::OfPower(const Expression& e) {
  if (e.Parts.size() != 2 || !names_.IsConstant(e.Parts[1])) return OfAnything(e);
  Node node;
  const bool square = e.Parts[1].What == Expression::Kind::Number && e.Parts[1].Value == 2.0;
  Line text{{square ? "u²" : "u^", Run::Kind::Plain}};
  if (!square) Append(text, Formula(e.Parts[1], names_, Binding::Name));
  Mention(node, e.Parts[1]);
  node.Texts = {Shortened(text, LongestText)};
  node.Inputs.push_back({Value(e.Parts[0]), {}});
  return AddOne(std::move(node));
}

int GraphBuilder::OfChoice(const Expression& e, std::size_t branch) {
  const Expression& condition = e.Parts[branch];
  const int then = Value(e.Parts[branch + 1]);
  const bool last = branch + 3 >= e.Parts.size();
  const int otherwise = last ? Value(e.Parts.back()) : OfChoice(e, branch + 2);
  Line told{{"if ", Run::Kind::Plain}};
  Append(told, Formula(condition, names_));
  told = Shortened(told, LongestCondition);
  // A block that can be bridged needs no switch.
  const int made = graph_.Outputs[static_cast<std::size_t>(then)].Node;
  if (names_.IsConstant(condition) && made + 1 == static_cast<int>(graph_.Nodes.size())) {
    Node& block = graph_.Nodes.back();
    if (block.Inputs.size() == 1 && block.Inputs[0].From == otherwise) {
      block.Remarks.push_back(told);
      Mention(block, condition);
      return then;
    }
  }
  Node node;
  node.What = Node::Sign::Switch;
  node.Remarks.push_back(told);
  Mention(node, condition);
  node.Inputs = {{then, "then"}, {otherwise, "else"}};
  AddInputs(node, condition);
  return AddOne(std::move(node));
}

int GraphBuilder::OfSum(const Expression& e) {
  auto terms = TermsOf(e);
  std::erase_if(terms, [](const auto& term) { return IsZero(*term.second); });
  return terms.empty() ? OfConstant(e) : SumOf(terms);
}

// More than a circle has room for follow in further ones.
int GraphBuilder::SumOf(const Terms& terms) {
  int sum = -1;
  for (std::size_t k = 0; k < terms.size();) {
    Node node;
    node.What = Node::Sign::Sum;
    if (sum >= 0) node.Inputs.push_back({sum, "+"});
    for (; k < terms.size() && node.Inputs.size() < MostSummed; ++k) {
      // A sign in the gain before it is the sum's.
      const Expression* term = terms[k].second;
      bool minus = terms[k].first;
      Factors factors = FactorsOf(*term, names_);
      if (factors.Number < 0.0 && factors.Signals.size() == 1 && factors.Divisors.empty()) {
        factors.Number = -factors.Number;
        minus = !minus;
        node.Inputs.push_back({Gained(factors, Value(*factors.Signals[0])), minus ? "−" : "+"});
        continue;
      }
      node.Inputs.push_back({Value(*term), minus ? "−" : "+"});
    }
    sum = AddOne(std::move(node));
  }
  return sum;
}

int GraphBuilder::Gained(const Factors& factors, int from) {
  if (factors.IsPlain()) return from;
  Node node;
  const Line below = factors.Denominator(names_);
  node.Texts = {Shortened(factors.Numerator(names_), LongestText)};
  if (below != Line{{"1", Run::Kind::Plain}}) {
    node.What = Node::Sign::Fraction;
    node.Texts.push_back(Shortened(below, LongestText));
  }
  Mention(node, factors);
  node.Inputs.push_back({from, {}});
  return AddOne(std::move(node));
}

int GraphBuilder::OfProduct(const Expression& e) {
  const Factors factors = FactorsOf(e, names_);
  if (factors.Signals.empty()) return OfAnything(e);
  if (factors.Signals.size() == 1 && factors.Divisors.empty()) {
    return Gained(factors, Value(*factors.Signals[0]));
  }
  Node node;
  node.What = Node::Sign::Product;
  for (const Expression* const factor : factors.Signals) {
    node.Inputs.push_back({Value(*factor), "×"});
  }
  for (const Expression* const divisor : factors.Divisors) {
    node.Inputs.push_back({Value(*divisor), "÷"});
  }
  return Gained(factors, AddOne(std::move(node)));
}

int GraphBuilder::OfConstant(const Expression& e) {
  Node node;
  node.Texts = {Told(e, LongestText)};
  Mention(node, e);
  return AddOne(std::move(node));
}

int GraphBuilder::OfAnything(const Expression& e) {
  Node node;
  node.Texts = {Told(e, LongestText)};
  AddInputs(node, e, {});
  Mention(node, e);
  return AddOne(std::move(node));
}

std::vector<int> GraphBuilder::SignalsIn(const Expression& e) {
  std::vector<int> signals;
  AddSignals(e, signals);
  return signals;
}

void GraphBuilder::AddSignals(const Expression& e, std::vector<int>& signals) {
  const bool own =
      e.What == Expression::Kind::Call && (e.Text == "der" || e.Text == "pre" || e.Text == "delay");
  if (own || (e.IsName() && !names_.IsConstant(e))) {
    const int signal = Value(e);
    if (std::find(signals.begin(), signals.end(), signal) == signals.end()) {
      signals.push_back(signal);
    }
    return;
  }
  for (const Expression& part : e.Parts) AddSignals(part, signals);
}

void GraphBuilder::AddInputs(Node& node, const Expression& e, const std::string& mark) {
  for (const int signal : SignalsIn(e)) {
    const bool there = std::any_of(node.Inputs.begin(), node.Inputs.end(),
                                   [&](const Input& input) { return input.From == signal; });
    if (!there) node.Inputs.push_back({signal, mark});
  }
}

void GraphBuilder::Mention(Node& node, const Expression& e) const {
  names_.AddMentioned(e, node.Mentions);
}

void GraphBuilder::Mention(Node& node, const Factors& factors) const {
  for (const Expression* const factor : factors.Above) Mention(node, *factor);
  for (const Expression* const factor : factors.Below) Mention(node, *factor);
}

Line GraphBuilder::Told(const Expression& e, std::size_t most) const {
  return Shortened(Formula(e, names_), most);
}

bool GraphBuilder::IsSampled(const Expression& e) const {
  const std::string& name = e.IsName() ? e.Text : e.Parts.at(0).Text;
  if (sampled_.contains(name)) return true;
  const loops::Component* const block = names_.Find(name.substr(0, name.find('.')));
  const loops::BlockType* const type = block ? loops::FindBlockType(block->Type) : nullptr;
  return type && type->When == loops::BlockType::Timing::Sampled;
}

}  // namespace torvane::drawing
