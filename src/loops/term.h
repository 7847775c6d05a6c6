#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "loops/operations.h"
#include "loops/problems.h"
#include "loops/unit.h"

namespace torvane::loops {

/// An expression whose names have become registers, of one type through and through.
struct Term {
  enum class Type {
    Unknown,  ///< something is wrong with it, which has been reported
    Number,
    Truth,
    Choice,  ///< of the enumeration number Enumeration; its position there
    String,
  };

  /// A leaf.
  static Term Of(int reg, Type type) {
    Term term;
    term.Register = reg;
    term.What = type;
    return term;
  }
  static Term Of(Operation how, Type type, std::vector<Term> parts) {
    Term term;
    term.How = how;
    term.What = type;
    term.Parts = std::move(parts);
    return term;
  }

  bool IsLeaf() const { return Register >= 0; }

  Type What = Type::Unknown;
  int Enumeration = -1;
  int Register = -1;
  Operation How = Operation::Add;
  std::vector<Term> Parts;
  std::optional<Unit> Dimension;

  bool operator==(const Term&) const = default;
};

}  // namespace torvane::loops
