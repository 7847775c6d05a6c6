#include "loops/token_reader.h"

#include <algorithm>
#include <array>

#include "loops/parser.h"

namespace torvane::loops {

namespace {

std::string Shown(const Token& token) {
  if (token.Kind == TokenKind::End) return "the end of the file";
  if (token.Kind == TokenKind::String) return "a text";
  return Quoted(token.Text.substr(0, 40));
}

}  // namespace

bool TokenReader::TakeWord(std::string_view word) {
  if (!SeesWord(word)) return false;
  Take();
  return true;
}

bool TokenReader::TakeSymbol(std::string_view symbol) {
  if (!SeesSymbol(symbol)) return false;
  Take();
  return true;
}

const Token& TokenReader::Take() {
  const Token& token = Here();
  if (!AtEnd()) ++position_;
  return token;
}

std::optional<std::string> TokenReader::TakeString() {
  if (Here().Kind != TokenKind::String) return {};
  std::string text = Take().Text;
  while (SeesSymbol("+")) {
    Take();
    if (Here().Kind != TokenKind::String) Refuse("a text");
    text += Take().Text;
  }
  return text;
}

void TokenReader::NeedWord(std::string_view word, std::string_view where) {
  if (!TakeWord(word)) Refuse(Quoted(word) + " " + std::string(where));
}

void TokenReader::NeedSymbol(std::string_view symbol, std::string_view where) {
  if (!TakeSymbol(symbol)) Refuse(Quoted(symbol) + " " + std::string(where));
}

const Token& TokenReader::NeedName(std::string_view what) {
  if (Here().Kind == TokenKind::QuotedWord) return Take();
  if (Here().Kind != TokenKind::Word) Refuse(what);
  if (IsKeyword(Here().Text)) {
    const std::string advice = AdviceFor(Here().Text);
    if (!advice.empty()) {
      Refuse(Here().Where, Quoted(Here().Text) + " is not in the language of loops: " + advice);
    }
    Refuse(Here().Where, "here should be " + std::string(what) + "; " + Quoted(Here().Text) +
                             " is a word of the language");
  }
  return Take();
}

void TokenReader::NeedSemicolon(std::string_view where) {
  if (TakeSymbol(";")) return;
  const bool lineEnds = AtEnd() || Here().Where.Line > Last().Where.Line;
  if (!lineEnds) Refuse("\";\" " + std::string(where));
  problems_.Error(Last().After, "\";\" is missing " + std::string(where));
}

void TokenReader::Refuse(std::string_view needed) {
  const std::string advice =
      Here().Kind == TokenKind::Word ? AdviceFor(Here().Text) : std::string();
  if (!advice.empty()) {
    Refuse(Here().Where, Quoted(Here().Text) + " is not in the language of loops: " + advice);
  }
  Refuse(Here().Where, "here should be " + std::string(needed) + ", not " + Shown(Here()));
}

void TokenReader::Refuse(Place where, const std::string& text) {
  problems_.Error(where, text);
  throw GivenUp();
}

void TokenReader::SkipToNext() {
  static constexpr std::array<std::string_view, 7> sections{
      "equation", "protected", "public", "end", "annotation", "elseif", "else"};
  while (!AtEnd()) {
    if (TakeSymbol(";")) return;
    if (Here().Kind == TokenKind::Word &&
        std::find(sections.begin(), sections.end(), Here().Text) != sections.end()) {
      return;
    }
    Take();
  }
}

}  // namespace torvane::loops
