#include <algorithm>
#include <numbers>

#include "loops/checker.h"
#include "loops/parser.h"

// What the names and signs of an expression mean.

namespace torvane::loops {

namespace {

using Kind = Expression::Kind;
using Type = Term::Type;

std::string NameOf(Type type) {
  switch (type) {
    case Type::Truth:
      return "a condition";
    case Type::Choice:
      return "a choice";
    case Type::String:
      return "a text";
    default:
      return "a number";
  }
}

std::optional<Operation> ArithmeticOf(const std::string& sign) {
  if (sign == "+") return Operation::Add;
  if (sign == "-") return Operation::Subtract;
  if (sign == "*") return Operation::Multiply;
  if (sign == "/") return Operation::Divide;
  if (sign == "^") return Operation::Power;
  return {};
}

// What the result of an operation measures.
std::optional<Unit> DimensionOf(Operation how, const Term& left, const Term& right) {
  const auto& a = left.Dimension;
  const auto& b = right.Dimension;
  switch (how) {
    case Operation::Multiply:
      return a && b ? std::optional(a->Times(*b)) : std::nullopt;
    case Operation::Divide:
      return a && b ? std::optional(a->Times(*b, -1)) : std::nullopt;
    case Operation::Add:
    case Operation::Subtract: {
      if (!a || !b) return a ? a : b;
      const auto sum = UnitOfSum(*a, *b, how == Operation::Subtract);
      return sum ? sum : a;
    }
    case Operation::Min:
    case Operation::Max:
      return a ? a : b;
    case Operation::Negate:
    case Operation::Abs:
    case Operation::Mod:
      return a;
    default:
      return {};
  }
}

}  // namespace

int Checker::Number(double value) {
  const auto [found, isNew] = numbers_.emplace(value, plan_->Registers);
  if (isNew) plan_->Numbers.emplace_back(NewRegister(), value);
  return found->second;
}

Term Checker::Resolve(const Expression& expression, const Context& context) {
  switch (expression.What) {
    case Kind::Number:
      return Term::Of(Number(expression.Value), Type::Number);
    case Kind::Truth:
      return Term::Of(Number(expression.Value), Type::Truth);
    case Kind::Name:
      return ResolveName(expression, context);
    case Kind::Call:
      return ResolveCall(expression, context);
    case Kind::Operator:
      return ResolveOperator(expression, context);
    case Kind::If:
      return ResolveIf(expression, context);
    case Kind::String:
      problems_.Error(expression.Where, "a text has no value to compute with");
      return {};
    case Kind::List:
      problems_.Error(expression.Where, "a list can be a block's parameter only");
      return {};
  }
  return {};
}

Term Checker::ResolveNumber(const Expression& expression, const Context& context) {
  Term term = Resolve(expression, context);
  if (term.What == Type::Number || term.What == Type::Unknown) return term;
  problems_.Error(expression.Where, "this is " + NameOf(term.What) + "; a number is needed here" +
                                        (term.What == Type::Truth ? ": if ... then 1 else 0" : ""));
  return {};
}

Term Checker::ResolveTruth(const Expression& expression, const Context& context) {
  Term term = Resolve(expression, context);
  if (term.What == Type::Truth || term.What == Type::Unknown) return term;
  problems_.Error(expression.Where,
                  "this is " + NameOf(term.What) + "; a condition is needed here");
  return {};
}

Term Checker::Signal(const SignalDraft& signal) const {
  Term term = Term::Of(signal.Register, Type::Number);
  term.Dimension = signal.Dimension;
  return term;
}

std::vector<std::string> Checker::KnownNames() const {
  std::vector<std::string> names{"time"};
  for (const auto& [name, symbol] : symbols_) {
    if (symbol.What == Symbol::Kind::Block) {
      for (const auto output : blocks_[symbol.Index].Type->Outputs) {
        names.push_back(name + "." + std::string(output));
      }
    } else if (symbol.What == Symbol::Kind::Source) {
      names.push_back(name + ".y");
    } else if (symbol.What == Symbol::Kind::Enumeration) {
      for (const std::string& literal : text_.Enumerations[symbol.Index].Literals) {
        names.push_back(name);
        names.back().append(1, '.').append(literal);
      }
    } else {
      names.push_back(name);
    }
  }
  return names;
}

Term Checker::ResolveName(const Expression& expression, const Context& context) {
  const std::string& name = expression.Text;
  const auto varying = [&](Term term) {
    if (!context.ConstantOnly) return term;
    problems_.Error(expression.Where, "only parameters can stand here; " + Quoted(name) +
                                          " changes while the loop runs");
    return Term();
  };
  if (name == "Modelica.Constants.pi") return Term::Of(Number(std::numbers::pi), Type::Number);
  if (name == "time") {
    Term term = Term::Of(plan_->Time, Type::Number);
    term.Dimension = ParseUnit("s");
    return varying(term);
  }
  const std::size_t dot = name.find('.');
  const auto found = symbols_.find(std::string_view(name).substr(0, dot));
  const auto unknown = [&] {
    if (name == "pi" || name.starts_with("Modelica.")) {
      problems_.Error(expression.Where, "unknown name " + Quoted(name) +
                                            "; of Modelica's constants there is "
                                            "Modelica.Constants.pi");
    } else if (name.starts_with("Torvane.Waveform.")) {
      problems_.Error(expression.Where, "a waveform can be a source's parameter only");
    } else {
      problems_.Unknown(expression.Where, "name", name, [this] { return KnownNames(); });
    }
    return Term();
  };
  if (found == symbols_.end()) return unknown();
  const Symbol& symbol = found->second;
  const std::string behind = dot == std::string::npos ? "" : name.substr(dot + 1);
  switch (symbol.What) {
    case Symbol::Kind::Wrong:
      return {};
    case Symbol::Kind::Parameter: {
      if (!behind.empty()) return unknown();
      const Parameter& parameter = parameters_[symbol.Index];
      Term term = Term::Of(parameter.Register, parameter.What);
      term.Enumeration = parameter.Enumeration;
      term.Dimension = parameter.Dimension;
      return term;
    }
    case Symbol::Kind::Signal:
      return behind.empty() ? varying(Signal(signals_[symbol.Index])) : unknown();
    case Symbol::Kind::Source:
      if (behind != "y") return unknown();
      return varying(Term::Of(plan_->Sources[symbol.Index].Register, Type::Number));
    case Symbol::Kind::Enumeration: {
      const auto& literals = text_.Enumerations[symbol.Index].Literals;
      const auto literal = std::find(literals.begin(), literals.end(), behind);
      if (literal == literals.end()) return unknown();
      Term term = Term::Of(Number(static_cast<double>(literal - literals.begin())), Type::Choice);
      term.Enumeration = static_cast<int>(symbol.Index);
      return term;
    }
    case Symbol::Kind::Block: {
      const BlockDraft& block = blocks_[symbol.Index];
      const auto& outputs = block.Type->Outputs;
      const auto output = std::find(outputs.begin(), outputs.end(), behind);
      if (output == outputs.end()) return unknown();
      const auto& registers = plan_->Blocks[block.Planned].Numbers.Outputs;
      return varying(
          Term::Of(registers[static_cast<std::size_t>(output - outputs.begin())], Type::Number));
    }
  }
  return {};
}

Term Checker::ResolveCall(const Expression& expression, const Context& context) {
  const std::string& name = expression.Text;
  const auto count = [&](std::size_t needed) {
    if (expression.Parts.size() == needed) return true;
    problems_.Error(expression.Where, Quoted(name) + " needs " + std::to_string(needed) +
                                          (needed == 1 ? " value" : " values") + " in brackets");
    return false;
  };
  if (name == "pre") return count(1) ? ResolvePre(expression, context) : Term();
  if (name == "der") return count(1) ? ResolveDer(expression, context) : Term();
  if (name == "noEvent") return count(1) ? Resolve(expression.Parts.front(), context) : Term();
  if (name == "delay") {
    if (!count(2)) return {};
    const int output = DelayBlock(expression, context);
    return output < 0 ? Term() : Term::Of(output, Type::Number);
  }
  const Function* const function = FindFunction(name);
  if (!function) {
    const std::string advice = AdviceFor(name);
    if (name == "sample") {
      problems_.Error(expression.Where, "\"sample\" stands behind \"when\" only");
    } else if (!advice.empty()) {
      problems_.Error(expression.Where,
                      Quoted(name) + " is not in the language of loops: " + advice);
    } else {
      problems_.Unknown(expression.Where, "function", name, FunctionNames);
    }
    return {};
  }
  if (!count(ArgumentCount(function->What))) return {};
  std::vector<Term> parts;
  for (const Expression& part : expression.Parts) {
    parts.push_back(ResolveNumber(part, context));
    if (parts.back().What == Type::Unknown) return {};
  }
  const bool alike = function->What == Operation::Min || function->What == Operation::Max;
  if (alike) CompareUnits(parts[0].Dimension, parts[1].Dimension, expression.Where, "one function");
  const auto dimension = DimensionOf(function->What, parts.front(), parts.back());
  Term term = Term::Of(function->What, Type::Number, std::move(parts));
  term.Dimension = dimension;
  return term;
}

Term Checker::ResolvePre(const Expression& expression, const Context& context) {
  const Expression& argument = expression.Parts.front();
  const auto found = argument.IsName() ? symbols_.find(argument.Text) : symbols_.end();
  if (found != symbols_.end() && found->second.What == Symbol::Kind::Wrong) return {};
  if (found == symbols_.end() || found->second.What != Symbol::Kind::Signal) {
    problems_.Error(expression.Where, "pre(x) needs the name of a signal");
    return {};
  }
  if (context.Clock < 0) {
    problems_.Error(expression.Where,
                    "pre(x), the value before a sample, has a meaning in \"when sample\" only");
    return {};
  }
  SignalDraft& signal = signals_[found->second.Index];
  if (signal.Previous < 0) {
    signal.Previous = NewRegister();
    previous_.emplace_back(signal.Register, signal.Previous);
  }
  Term term = Term::Of(signal.Previous, Type::Number);
  term.Dimension = signal.Dimension;
  return term;
}

Term Checker::ResolveDer(const Expression& expression, const Context& context) {
  const Expression& argument = expression.Parts.front();
  const auto found = argument.IsName() ? symbols_.find(argument.Text) : symbols_.end();
  if (found != symbols_.end() && found->second.What == Symbol::Kind::Wrong) return {};
  const bool isState = found != symbols_.end() && found->second.What == Symbol::Kind::Signal &&
                       signals_[found->second.Index].State >= 0;
  if (!isState || context.ConstantOnly) {
    problems_.Error(expression.Where,
                    "der(x) needs a signal that an equation der(x) = ... integrates");
    return {};
  }
  const SignalDraft& signal = signals_[found->second.Index];
  Term term = Term::Of(signal.State + static_cast<int>(plan_->States.size()), Type::Number);
  if (signal.Dimension) term.Dimension = signal.Dimension->Times(*ParseUnit("s"), -1);
  return term;
}

bool Checker::Alike(const Term& left, const Term& right, Place where) {
  if (left.What == right.What && left.Enumeration == right.Enumeration) {
    CompareUnits(left.Dimension, right.Dimension, where, "one operation");
    return true;
  }
  problems_.Error(where, "one side is " + NameOf(left.What) + ", the other " + NameOf(right.What) +
                             (left.What == right.What ? " of another type" : ""));
  return false;
}

void Checker::CompareUnits(const std::optional<Unit>& left, const std::optional<Unit>& right,
                           Place where, const std::string& what) {
  if (!left || !right || left->Fits(*right)) return;
  problems_.Warn(where,
                 "the units do not fit: " + left->Text() + " and " + right->Text() + " in " + what);
}

Term Checker::ResolveOperator(const Expression& expression, const Context& context) {
  const std::string& sign = expression.Text;
  if (sign == "and" || sign == "or" || sign == "not") {
    std::vector<Term> parts;
    for (const Expression& part : expression.Parts) parts.push_back(ResolveTruth(part, context));
    for (const Term& part : parts) {
      if (part.What == Type::Unknown) return {};
    }
    const Operation how = sign == "and"  ? Operation::And
                          : sign == "or" ? Operation::Or
                                         : Operation::Not;
    return Term::Of(how, Type::Truth, std::move(parts));
  }
  if (const auto arithmetic = ArithmeticOf(sign)) {
    std::vector<Term> parts;
    for (const Expression& part : expression.Parts) parts.push_back(ResolveNumber(part, context));
    for (const Term& part : parts) {
      if (part.What == Type::Unknown) return {};
    }
    const Operation how = parts.size() == 1 ? Operation::Negate : *arithmetic;
    const bool sum = how == Operation::Add || how == Operation::Subtract;
    const bool known = sum && parts[0].Dimension && parts[1].Dimension;
    if (known && !UnitOfSum(*parts[0].Dimension, *parts[1].Dimension, how == Operation::Subtract)) {
      CompareUnits(parts[0].Dimension, parts[1].Dimension, expression.Where, "one operation");
    }
    const auto dimension = DimensionOf(how, parts.front(), parts.back());
    Term term = Term::Of(how, Type::Number, std::move(parts));
    term.Dimension = dimension;
    return term;
  }
  Term left = Resolve(expression.Parts[0], context);
  Term right = Resolve(expression.Parts[1], context);
  if (left.What == Type::Unknown || right.What == Type::Unknown) return {};
  if (!Alike(left, right, expression.Where)) return {};
  const bool equality = sign == "==" || sign == "<>";
  if (!equality && left.What == Type::Truth) {
    problems_.Error(expression.Where, "conditions are not larger or smaller; use == or <>");
    return {};
  }
  if (sign == ">" || sign == ">=") std::swap(left, right);
  const Operation how = sign == "=="                 ? Operation::Equal
                        : sign == "<>"               ? Operation::NotEqual
                        : sign == "<" || sign == ">" ? Operation::Less
                                                     : Operation::LessEqual;
  std::vector<Term> parts;
  parts.push_back(std::move(left));
  parts.push_back(std::move(right));
  return Term::Of(how, Type::Truth, std::move(parts));
}

Term Checker::ResolveIf(const Expression& expression, const Context& context) {
  std::vector<Term> parts;
  bool known = true;
  const std::size_t last = expression.Parts.size() - 1;
  for (std::size_t i = 0; i <= last; ++i) {
    const bool condition = i % 2 == 0 && i < last;
    parts.push_back(condition ? ResolveTruth(expression.Parts[i], context)
                              : Resolve(expression.Parts[i], context));
    known = known && parts.back().What != Type::Unknown;
  }
  if (!known) return {};
  std::optional<Unit> dimension = parts.back().Dimension;
  for (std::size_t i = 1; i < last; i += 2) {
    if (!Alike(parts[i], parts.back(), expression.Parts[i].Where)) return {};
    if (!dimension) dimension = parts[i].Dimension;
  }
  const Type type = parts.back().What;
  const int enumeration = parts.back().Enumeration;
  Term term = Term::Of(Operation::If, type, std::move(parts));
  term.Enumeration = enumeration;
  term.Dimension = dimension;
  return term;
}

}  // namespace torvane::loops
