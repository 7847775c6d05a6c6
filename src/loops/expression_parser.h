#pragma once

#include "loops/syntax.h"
#include "loops/token_reader.h"

namespace torvane::loops {

/// Reads expressions and the modifiers that hold them.
class ExpressionParser {
 public:
  explicit ExpressionParser(TokenReader& reader) : reader_(reader) {}

  Expression Read();
  /// A name with its parts behind dots.
  Expression DottedName(std::string_view what);
  /// "(...)" behind a declared name or "annotation"; nothing when there is none.
  std::vector<Modifier> Modifiers();
  std::vector<Expression> Arguments(std::string_view closing);

 private:
  Expression ReadIf();
  Expression ReadOr();
  Expression ReadAnd();
  Expression ReadNot();
  Expression ReadRelation();
  Expression ReadSum();
  Expression ReadProduct();
  Expression ReadPower();
  Expression ReadPrimary();
  Expression ReadWord();
  Expression Made(Place where, const std::string& symbol, std::vector<Expression> parts);
  void RefuseElementwise();

  TokenReader& reader_;
  int depth_ = 0;
};

}  // namespace torvane::loops
