#include "loops/expression_parser.h"

#include <array>

#include "loops/parser.h"

namespace torvane::loops {

namespace {

using Kind = Expression::Kind;

std::vector<Expression> Both(Expression left, Expression right) {
  std::vector<Expression> parts;
  parts.push_back(std::move(left));
  parts.push_back(std::move(right));
  return parts;
}

std::vector<Expression> One(Expression part) {
  std::vector<Expression> parts;
  parts.push_back(std::move(part));
  return parts;
}

/// Counts how deep brackets and the like stand in each other.
class Deeper {
 public:
  Deeper(int& depth, TokenReader& reader) : depth_(depth) {
    if (++depth_ <= MaxDepth) return;
    --depth_;
    reader.Refuse(reader.Here().Where, "this is nested too deep; at most " +
                                           std::to_string(MaxDepth) +
                                           " brackets may stand in each other");
  }
  ~Deeper() { --depth_; }
  Deeper(const Deeper&) = delete;
  Deeper& operator=(const Deeper&) = delete;

 private:
  int& depth_;
};

}  // namespace

Expression ExpressionParser::Made(Place where, const std::string& symbol,
                                  std::vector<Expression> parts) {
  Expression made(Kind::Operator, where, symbol, std::move(parts));
  if (made.Depth > MaxDepth) {
    reader_.Refuse(where, "this expression is too long; split it into several equations");
  }
  return made;
}

Expression ExpressionParser::Read() {
  const Deeper deeper(depth_, reader_);
  return reader_.SeesWord("if") ? ReadIf() : ReadOr();
}

Expression ExpressionParser::ReadIf() {
  const Place where = reader_.Take().Where;
  std::vector<Expression> parts;
  do {
    parts.push_back(Read());
    reader_.NeedWord("then", "behind the condition");
    parts.push_back(Read());
  } while (reader_.TakeWord("elseif"));
  reader_.NeedWord("else", "with the value otherwise");
  parts.push_back(Read());
  Expression made(Kind::If, where, "if", std::move(parts));
  if (made.Depth > MaxDepth) reader_.Refuse(where, "this expression is too long");
  return made;
}

Expression ExpressionParser::ReadOr() {
  Expression left = ReadAnd();
  while (reader_.SeesWord("or")) {
    const Place where = reader_.Take().Where;
    left = Made(where, "or", Both(std::move(left), ReadAnd()));
  }
  return left;
}

Expression ExpressionParser::ReadAnd() {
  Expression left = ReadNot();
  while (reader_.SeesWord("and")) {
    const Place where = reader_.Take().Where;
    left = Made(where, "and", Both(std::move(left), ReadNot()));
  }
  return left;
}

Expression ExpressionParser::ReadNot() {
  if (!reader_.SeesWord("not")) return ReadRelation();
  const Place where = reader_.Take().Where;
  return Made(where, "not", One(ReadRelation()));
}

Expression ExpressionParser::ReadRelation() {
  static constexpr std::array<std::string_view, 6> relations{"<", "<=", ">", ">=", "==", "<>"};
  Expression left = ReadSum();
  for (const std::string_view relation : relations) {
    if (!reader_.SeesSymbol(relation)) continue;
    const Place where = reader_.Take().Where;
    return Made(where, std::string(relation), Both(std::move(left), ReadSum()));
  }
  return left;
}

void ExpressionParser::RefuseElementwise() {
  const Token& token = reader_.Here();
  if (token.Kind == TokenKind::Symbol && token.Text.size() == 2 && token.Text[0] == '.') {
    reader_.Refuse(token.Where,
                   Quoted(token.Text) + " is for arrays; write " + Quoted(token.Text.substr(1)));
  }
}

Expression ExpressionParser::ReadSum() {
  const Place start = reader_.Here().Where;
  const bool minus = reader_.TakeSymbol("-");
  if (!minus) reader_.TakeSymbol("+");
  Expression left = ReadProduct();
  if (minus) left = Made(start, "-", One(std::move(left)));
  while (reader_.SeesSymbol("+") || reader_.SeesSymbol("-")) {
    const Token& sign = reader_.Take();
    left = Made(sign.Where, sign.Text, Both(std::move(left), ReadProduct()));
  }
  RefuseElementwise();
  return left;
}

Expression ExpressionParser::ReadProduct() {
  Expression left = ReadPower();
  while (reader_.SeesSymbol("*") || reader_.SeesSymbol("/")) {
    const Token& sign = reader_.Take();
    left = Made(sign.Where, sign.Text, Both(std::move(left), ReadPower()));
  }
  return left;
}

Expression ExpressionParser::ReadPower() {
  Expression base = ReadPrimary();
  if (!reader_.SeesSymbol("^")) return base;
  const Place where = reader_.Take().Where;
  return Made(where, "^", Both(std::move(base), ReadPrimary()));
}

Expression ExpressionParser::ReadPrimary() {
  const Token& token = reader_.Here();
  const Place where = token.Where;
  if (token.Kind == TokenKind::Number) return {Kind::Number, where, reader_.Take().Number};
  if (token.Kind == TokenKind::String) {
    return {Kind::String, where, reader_.TakeString().value_or("")};
  }
  if (reader_.TakeSymbol("(")) {
    Expression inside = Read();
    reader_.NeedSymbol(")", "behind what stands in brackets");
    return inside;
  }
  if (reader_.TakeSymbol("{")) {
    const Deeper deeper(depth_, reader_);
    return {Kind::List, where, "{}", Arguments("}")};
  }
  if (token.Kind == TokenKind::Word || token.Kind == TokenKind::QuotedWord) return ReadWord();
  reader_.Refuse("a value");
}

Expression ExpressionParser::ReadWord() {
  const Place where = reader_.Here().Where;
  if (reader_.TakeWord("true")) return {Kind::Truth, where, 1.0};
  if (reader_.TakeWord("false")) return {Kind::Truth, where, 0.0};
  if (reader_.TakeWord("der")) {
    reader_.NeedSymbol("(", "behind \"der\"");
    return {Kind::Call, where, "der", Arguments(")")};
  }
  Expression name = DottedName("a value");
  if (reader_.TakeSymbol("(")) {
    const Deeper deeper(depth_, reader_);
    return {Kind::Call, where, name.Text, Arguments(")")};
  }
  if (reader_.SeesSymbol("[")) {
    reader_.Refuse(reader_.Here().Where, "there are no arrays of signals; give each a name");
  }
  return name;
}

Expression ExpressionParser::DottedName(std::string_view what) {
  const Token& first = reader_.NeedName(what);
  std::string name = first.Text;
  while (reader_.TakeSymbol(".")) {
    name += '.';
    name += reader_.NeedName("a name behind \".\"").Text;
  }
  return {Kind::Name, first.Where, name};
}

std::vector<Expression> ExpressionParser::Arguments(std::string_view closing) {
  std::vector<Expression> arguments;
  if (reader_.TakeSymbol(closing)) return arguments;
  do {
    arguments.push_back(Read());
    if (reader_.SeesSymbol("=")) {
      reader_.Refuse(reader_.Here().Where, "arguments have no names; write the value alone");
    }
  } while (reader_.TakeSymbol(","));
  reader_.NeedSymbol(closing, "or \",\" in this list");
  return arguments;
}

std::vector<Modifier> ExpressionParser::Modifiers() {
  std::vector<Modifier> modifiers;
  if (!reader_.TakeSymbol("(")) return modifiers;
  if (reader_.TakeSymbol(")")) return modifiers;
  const Deeper deeper(depth_, reader_);
  do {
    if (reader_.SeesWord("final")) reader_.Take();
    const Token& name = reader_.NeedName("a name with its value");
    Modifier modifier{name.Text, name.Where, {}, Modifiers()};
    if (reader_.TakeSymbol("=")) modifier.Value = Read();
    if (!modifier.Value && modifier.Inside.empty()) reader_.Refuse("\"=\" and a value");
    modifiers.push_back(std::move(modifier));
  } while (reader_.TakeSymbol(","));
  reader_.NeedSymbol(")", "or \",\" in this list");
  return modifiers;
}

}  // namespace torvane::loops
