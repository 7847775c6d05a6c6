#include "drawing/formula.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace torvane::drawing {

using loops::Expression;

namespace {

Line Plain(const std::string& text) {
  return {{text, Run::Kind::Plain}};
}

// The character's first byte.
bool BeginsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

Binding BindingOf(const Expression& e) {
  if (e.What == Expression::Kind::If) return Binding::Or;
  if (e.What != Expression::Kind::Operator) return Binding::Name;
  if (e.Text == "or") return Binding::Or;
  if (e.Text == "and") return Binding::And;
  if (e.Text == "not") return Binding::Not;
  if (e.Text == "+" || e.Text == "-") return Binding::Sum;
  if (e.Text == "*" || e.Text == "/") return Binding::Product;
  return e.Text == "^" ? Binding::Power : Binding::Relation;
}

std::string OperatorText(const std::string& text) {
  if (text == "*") return "·";
  if (text == "-") return " − ";
  if (text == "/" || text == "^") return text;
  if (text == "==") return " = ";
  if (text == "<>") return " ≠ ";
  if (text == "<=") return " ≤ ";
  if (text == ">=") return " ≥ ";
  return " " + text + " ";
}

Line NameLine(const Expression& e, const LoopNames& names) {
  const loops::Component* const component = names.Find(e.Text);
  if (component && names.IsChanged(*component)) {
    return {{LoopNames::Shown(*component), Run::Kind::Constant}};
  }
  if (component) return Plain(LoopNames::Shown(*component));
  if (e.Text == "Modelica.Constants.pi") return Plain("π");
  const std::size_t dot = e.Text.rfind('.');
  const bool choice = dot != std::string::npos && !names.Find(e.Text.substr(0, e.Text.find('.')));
  return Plain(choice ? e.Text.substr(dot + 1) : e.Text);
}

Line CallLine(const Expression& e, const LoopNames& names) {
  const bool bare = e.Text == "noEvent" && e.Parts.size() == 1;
  if (bare) return Formula(e.Parts[0], names);
  const bool list = e.What == Expression::Kind::List;
  const bool size = e.Text == "abs";
  Line line = Plain(list ? "{" : size ? "|" : e.Text + "(");
  for (std::size_t k = 0; k < e.Parts.size(); ++k) {
    if (k > 0) Append(line, Plain(", "));
    Append(line, Formula(e.Parts[k], names));
  }
  Append(line, Plain(list ? "}" : size ? "|" : ")"));
  return line;
}

Line OperatorLine(const Expression& e, const LoopNames& names) {
  const Binding own = BindingOf(e);
  Line line;
  if (e.Parts.size() == 1) {
    line = Plain(e.Text == "-" ? "−" : e.Text + " ");
    Append(line, Formula(e.Parts[0], names, Binding::Product));
    return line;
  }
  line = Formula(e.Parts[0], names, own);
  Append(line, Plain(OperatorText(e.Text)));
  const bool tight = e.Text == "-" || e.Text == "/" || e.Text == "^";
  const auto next = static_cast<Binding>(static_cast<int>(own) + (tight ? 1 : 0));
  Append(line, Formula(e.Parts[1], names, next));
  return line;
}

Line IfLine(const Expression& e, const LoopNames& names) {
  Line line;
  for (std::size_t k = 0; k + 1 < e.Parts.size(); k += 2) {
    Append(line, Plain(k == 0 ? "if " : " elseif "));
    Append(line, Formula(e.Parts[k], names));
    Append(line, Plain(" then "));
    Append(line, Formula(e.Parts[k + 1], names));
  }
  Append(line, Plain(" else "));
  Append(line, Formula(e.Parts.back(), names));
  return line;
}

Line BareFormula(const Expression& e, const LoopNames& names) {
  switch (e.What) {
    case Expression::Kind::Number:
      return Plain(ShortNumber(e.Value));
    case Expression::Kind::Truth:
      return Plain(e.Value != 0.0 ? "true" : "false");
    case Expression::Kind::String:
      return Plain(e.Text);
    case Expression::Kind::Name:
      return NameLine(e, names);
    case Expression::Kind::Call:
    case Expression::Kind::List:
      return CallLine(e, names);
    case Expression::Kind::If:
      return IfLine(e, names);
    default:
      return OperatorLine(e, names);
  }
}

// "2·K·" and then the names; a 1 is written only where nothing else is.
Line FactorLine(double number, const std::vector<const Expression*>& factors,
                const std::string& more, const LoopNames& names) {
  Line line;
  if (number == -1.0 && !(factors.empty() && more.empty())) {
    line = Plain("−");
  } else if (number != 1.0 || (factors.empty() && more.empty())) {
    line = Plain(ShortNumber(number));
  }
  const bool alone = number == 1.0 && factors.size() == 1 && more.empty();
  for (std::size_t k = 0; k < factors.size(); ++k) {
    const Expression* const factor = factors[k];
    if (!line.empty() && line.back().Text != "−") Append(line, Plain("·"));
    Append(line, Formula(*factor, names, alone ? Binding::Nothing : Binding::Product));
    if (k + 1 == factors.size() || !Same(*factor, *factors[k + 1])) continue;
    Append(line, Plain("²"));
    ++k;
  }
  if (!more.empty()) Append(line, Plain((line.empty() ? "" : " ") + more));
  return line;
}

bool IsNumber(const Expression& e) {
  return e.What == Expression::Kind::Number ||
         (e.What == Expression::Kind::Name && e.Text == "Modelica.Constants.pi");
}

void Collect(const Expression& e, bool below, const LoopNames& names, Factors& factors) {
  const bool isOperator = e.What == Expression::Kind::Operator;
  if (e.What == Expression::Kind::Call && e.Text == "noEvent" && e.Parts.size() == 1) {
    Collect(e.Parts[0], below, names, factors);
  } else if (isOperator && e.Parts.size() == 2 && (e.Text == "*" || e.Text == "/")) {
    Collect(e.Parts[0], below, names, factors);
    Collect(e.Parts[1], below != (e.Text == "/"), names, factors);
  } else if (isOperator && e.Parts.size() == 1 && e.Text == "-") {
    factors.Number = -factors.Number;
    Collect(e.Parts[0], below, names, factors);
  } else if (IsNumber(e)) {
    const double value = e.What == Expression::Kind::Number ? e.Value : 3.141592653589793;
    (below ? factors.Divisor : factors.Number) *= value;
  } else if (names.IsConstant(e)) {
    (below ? factors.Below : factors.Above).push_back(&e);
  } else {
    (below ? factors.Divisors : factors.Signals).push_back(&e);
  }
}

void CollectTerms(const Expression& e, bool minus,
                  std::vector<std::pair<bool, const Expression*>>& terms) {
  const bool sum = e.What == Expression::Kind::Operator && (e.Text == "+" || e.Text == "-");
  if (!sum) {
    terms.emplace_back(minus, &e);
  } else if (e.Parts.size() == 1) {
    CollectTerms(e.Parts[0], minus != (e.Text == "-"), terms);
  } else {
    CollectTerms(e.Parts[0], minus, terms);
    CollectTerms(e.Parts[1], minus != (e.Text == "-"), terms);
  }
}

}  // namespace

Line Formula(const Expression& expression, const LoopNames& names, Binding within) {
  Line line = BareFormula(expression, names);
  if (BindingOf(expression) >= within) return line;
  line.insert(line.begin(), {"(", Run::Kind::Plain});
  Append(line, Plain(")"));
  return line;
}

std::string ShortNumber(double x) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), std::abs(x),
                                 std::chars_format::general, 4);
  return (x < 0.0 ? "−" : "") + std::string(text.data(), end.ptr);
}

Line Factors::Numerator(const LoopNames& names) const {
  const bool dividedOut = Divisor != 1.0 && Number != 1.0;
  return FactorLine(dividedOut ? Number / Divisor : Number, Above, {}, names);
}

Line Factors::Denominator(const LoopNames& names, const std::string& more) const {
  return FactorLine(Number != 1.0 ? 1.0 : Divisor, Below, more, names);
}

Factors FactorsOf(const Expression& product, const LoopNames& names) {
  Factors factors;
  Collect(product, false, names, factors);
  return factors;
}

std::vector<std::pair<bool, const Expression*>> TermsOf(const Expression& sum) {
  std::vector<std::pair<bool, const Expression*>> terms;
  CollectTerms(sum, false, terms);
  return terms;
}

std::size_t Characters(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::size_t Length(const Line& line) {
  std::size_t length = 0;
  for (const Run& run : line) length += Characters(run.Text);
  return length;
}

Line Shortened(const Line& line, std::size_t most) {
  if (Length(line) <= most) return line;
  Line kept;
  std::size_t left = most - 1;
  for (Run run : line) {
    const std::size_t length = Characters(run.Text);
    if (length <= left) {
      left -= length;
      kept.push_back(run);
      continue;
    }
    // A name that is cut is none.
    if (run.What == Run::Kind::Constant || run.What == Run::Kind::Signal) break;
    std::size_t end = 0;
    for (std::size_t count = 0; count <= left; ++count) {
      if (count == left) break;
      do ++end;
      while (end < run.Text.size() && !BeginsCharacter(run.Text[end]));
    }
    run.Text.resize(end);
    kept.push_back(run);
    break;
  }
  Append(kept, {{"…", Run::Kind::Plain}});
  return kept;
}

void Append(Line& line, const Line& more) {
  for (const Run& run : more) {
    if (!line.empty() && line.back().What == run.What && run.What == Run::Kind::Plain) {
      line.back().Text += run.Text;
    } else {
      line.push_back(run);
    }
  }
}

}  // namespace torvane::drawing
