#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "loops/problems.h"

namespace torvane::loops {

// A loop's text as the parser takes it apart; nothing in it has been checked for its meaning.

/// What an expression may nest, so that no text can exhaust the stack.
inline constexpr int MaxDepth = 100;

struct Expression {
  enum class Kind {
    Number,
    Truth,     ///< true or false, in Value
    String,    ///< in Text
    Name,      ///< in Text, dots included
    Call,      ///< of the function in Text
    Operator,  ///< in Text, with one or two Parts
    If,        ///< Parts: condition, value, ..., the value otherwise
    List,      ///< { }
  };

  Expression(Kind what, Place where, std::string text, std::vector<Expression> parts = {})
      : What(what), Where(where), Text(std::move(text)), Parts(std::move(parts)) {
    for (const Expression& part : Parts) Depth = std::max(Depth, part.Depth + 1);
  }
  Expression(Kind what, Place where, double value) : What(what), Where(where), Value(value) {}

  bool IsName() const { return What == Kind::Name; }

  Kind What;
  Place Where;
  std::string Text;
  double Value = 0.0;
  std::vector<Expression> Parts;
  int Depth = 1;
};

/// "name = value" or "name(...)" between the brackets of a declaration or an annotation.
struct Modifier {
  std::string Name;
  Place Where;
  std::optional<Expression> Value;
  std::vector<Modifier> Inside;
};

/// The modifier of that name, or nullptr.
const Modifier* Find(const std::vector<Modifier>& modifiers, const std::string& name);

struct Component {
  enum class Prefix { None, Parameter, Constant, Discrete };

  Place Where;  ///< of its name
  Prefix How = Prefix::None;
  bool Final = false;
  bool Protected = false;
  std::string Type;
  Place TypeWhere;
  std::string Name;
  std::vector<Modifier> Modifiers;
  std::optional<Expression> Value;
  std::string Description;
  std::vector<Modifier> Annotation;
};

struct Branch;

struct Equation {
  enum class Kind { Equal, Reinit, If, When };

  Kind What = Kind::Equal;
  Place Where;
  std::vector<Expression> Sides;  ///< left and right; of reinit its arguments
  std::vector<Branch> Branches;
};

struct Branch {
  std::optional<Expression> Condition;  ///< none: else
  std::vector<Equation> Equations;
};

struct Enumeration {
  Place Where;
  std::string Name;
  std::vector<std::string> Literals;
};

struct ModelText {
  std::string Name;
  Place Where;
  std::string Description;
  std::vector<Enumeration> Enumerations;
  std::vector<Component> Components;
  std::vector<Equation> Equations;
  std::vector<Modifier> Annotation;
};

}  // namespace torvane::loops
