#include "drawing/block_looks.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "drawing/formula.h"

namespace torvane::drawing {

using loops::Component;
using loops::Expression;

namespace {

constexpr std::size_t LongestParameter = 24;
constexpr std::size_t LongestPolynomial = 18;

struct Look {
  Node::Sign Sign;
  std::vector<std::string> Texts;
};

const std::map<std::string_view, Look>& Looks() {
  using Sign = Node::Sign;
  static const std::map<std::string_view, Look> looks{
      {"LowPass1", {Sign::Box, {"1-pole", "low-pass"}}},
      {"LowPass2", {Sign::Box, {"2-pole", "low-pass"}}},
      {"Notch", {Sign::Box, {"notch"}}},
      {"TwoPoleTwoZero", {Sign::Box, {"2 poles", "2 zeros"}}},
      {"TransferFunction", {Sign::Box, {"transfer", "function"}}},
      {"StateSpace", {Sign::Box, {"state", "space"}}},
      {"ZerosAndPoles", {Sign::Box, {"zeros", "and poles"}}},
      {"DeadTime", {Sign::Box, {"e⁻ˢᵀ"}}},
      {"Memory", {Sign::Box, {"memory"}}},
      {"Limiter", {Sign::Limiter, {}}},
      {"DeadZone", {Sign::DeadZone, {}}},
      {"Quantiser", {Sign::Quantiser, {}}},
      {"SlewRateLimiter", {Sign::RateLimiter, {}}},
      {"Table", {Sign::Curve, {}}},
      {"PI", {Sign::Box, {"PI"}}},
      {"PIPlus", {Sign::Box, {"PI+"}}},
      {"PID", {Sign::Box, {"PID"}}},
      {"UnitDelay", {Sign::Box, {"z⁻¹"}}},
      {"ZeroOrderHold", {Sign::Box, {"hold"}}},
      {"TwoInertia", {Sign::Box, {"two inertias", "on a shaft"}}},
      {"Friction", {Sign::Friction, {}}},
  };
  return looks;
}

std::string_view Last(std::string_view dotted) {
  return dotted.substr(dotted.rfind('.') + 1);
}

std::vector<Line> PlainLines(const std::vector<std::string>& texts) {
  std::vector<Line> lines;
  lines.reserve(texts.size());
  for (const std::string& text : texts) lines.push_back({{text, Run::Kind::Plain}});
  return lines;
}

// "0.1 s² + s + 1"; empty for what is too long, or no list of what can be told shortly.
Line Polynomial(const Expression* list, const std::string& variable, const LoopNames& names) {
  static constexpr std::array<const char*, 5> powers{"", "", "²", "³", "⁴"};
  if (!list || list->What != Expression::Kind::List || list->Parts.size() > powers.size())
    return {};
  Line line;
  for (std::size_t k = 0; k < list->Parts.size(); ++k) {
    const Expression& coefficient = list->Parts[k];
    const std::size_t power = list->Parts.size() - 1 - k;
    if (coefficient.What == Expression::Kind::Number && coefficient.Value == 0.0) continue;
    if (!line.empty()) Append(line, {{" + ", Run::Kind::Plain}});
    const bool one = coefficient.What == Expression::Kind::Number && coefficient.Value == 1.0;
    if (!one || power == 0) {
      Append(line, Formula(coefficient, names, power == 0 ? Binding::Sum : Binding::Product));
      if (power > 0) Append(line, {{" ", Run::Kind::Plain}});
    }
    if (power > 0) Append(line, {{variable + powers[power], Run::Kind::Plain}});
  }
  if (line.empty()) line = {{"0", Run::Kind::Plain}};
  return Length(line) <= LongestPolynomial ? line : Line();
}

const Expression* ValueOf(const Component& block, std::string_view name) {
  const loops::Modifier* const given = loops::Find(block.Modifiers, std::string(name));
  return given && given->Value ? &*given->Value : nullptr;
}

// A fraction, where it is short.
bool ShowTransferFunction(const Component& block, bool sampled, const LoopNames& names,
                          Node& node) {
  const std::string variable = sampled ? "z" : "s";
  const Line above = Polynomial(ValueOf(block, "b"), variable, names);
  const Line below = Polynomial(ValueOf(block, "a"), variable, names);
  if (above.empty() || below.empty()) return false;
  node.What = Node::Sign::Fraction;
  node.Texts = {above, below};
  return true;
}

bool IsChangedName(const Expression& e, const LoopNames& names) {
  const Component* const component = e.IsName() ? names.Find(e.Text) : nullptr;
  return component && names.IsChanged(*component);
}

}  // namespace

Node NodeOf(const Component& block, const loops::BlockType& type, const LoopNames& names) {
  Node node;
  const std::string_view last = Last(type.Name);
  const auto look = Looks().find(last);
  const bool sampled = type.When == loops::BlockType::Timing::Sampled;
  bool told = false;
  if (look != Looks().end()) {
    node.What = look->second.Sign;
    node.Texts = PlainLines(look->second.Texts);
  } else {
    node.Texts = PlainLines({std::string(last)});
  }
  node.IsPlant = last == "DeadTime" || last == "TwoInertia";
  if (last == "TransferFunction") told = ShowTransferFunction(block, sampled, names, node);
  node.Remarks.push_back({{LoopNames::Shown(block), Run::Kind::Quiet}});
  for (const loops::BlockParameter& parameter : type.Parameters) {
    const Expression* const value = ValueOf(block, parameter.Name);
    if (!value) continue;
    const bool clock = parameter.Name == "samplePeriod";
    if (clock) {
      for (const Run& run : Formula(*value, names)) node.Clock += run.Text;
    }
    names.AddMentioned(*value, node.Mentions);
    if (clock || told || IsChangedName(*value, names)) continue;
    Line remark{{std::string(parameter.Name) + " = ", Run::Kind::Plain}};
    Append(remark, Formula(*value, names));
    node.Remarks.push_back(Shortened(remark, LongestParameter));
  }
  return node;
}

Node SourceNode(const Component& source) {
  Node node;
  node.What = Node::Sign::Source;
  std::string name = LoopNames::Shown(source);
  if (name == "MainWaveGen") name = "Waveform Generator";
  const std::size_t blank = name.find(' ');
  node.Texts.push_back({{name.substr(0, blank), Run::Kind::Plain}});
  if (blank != std::string::npos) {
    node.Texts.push_back({{name.substr(blank + 1), Run::Kind::Plain}});
  }
  return node;
}

}  // namespace torvane::drawing
