#pragma once

#include "drawing/block_graph.h"
#include "drawing/loop_names.h"

namespace torvane::drawing {

/// An expression as a line of text, with as few brackets as it needs. `within` is how tightly what
/// stands around it binds.
enum class Binding { Nothing, Or, And, Not, Relation, Sum, Product, Power, Name };
Line Formula(const loops::Expression& expression, const LoopNames& names,
             Binding within = Binding::Nothing);

/// At most four significant digits.
std::string ShortNumber(double x);

/// The factors of a product that are constants, and those that are not.
struct Factors {
  double Number = 1.0;  ///< that of all literals
  double Divisor = 1.0;
  std::vector<const loops::Expression*> Above;
  std::vector<const loops::Expression*> Below;
  std::vector<const loops::Expression*> Signals;
  std::vector<const loops::Expression*> Divisors;

  bool IsPlain() const { return Number == 1.0 && Divisor == 1.0 && Above.empty() && Below.empty(); }
  /// The constant factors alone: what stands above and below the fraction's line, "1" for nothing.
  /// `more` is a further factor below.
  Line Numerator(const LoopNames& names) const;
  Line Denominator(const LoopNames& names, const std::string& more = {}) const;
};
Factors FactorsOf(const loops::Expression& product, const LoopNames& names);

/// A sum's parts; true: it is subtracted.
std::vector<std::pair<bool, const loops::Expression*>> TermsOf(const loops::Expression& sum);

/// So many characters of it, with dots for the rest.
Line Shortened(const Line& line, std::size_t most);
std::size_t Length(const Line& line);
void Append(Line& line, const Line& more);

/// UTF-8 characters of the text.
std::size_t Characters(const std::string& text);

}  // namespace torvane::drawing
