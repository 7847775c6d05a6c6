#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "loops/lexer.h"

namespace torvane::loops {

/// Ends the reading of one declaration or equation; the reason has been reported.
struct GivenUp {};

/// Walks over a text's tokens.
class TokenReader {
 public:
  TokenReader(std::vector<Token> tokens, ProblemList& problems)
      : problems_(problems), tokens_(std::move(tokens)) {}

  const Token& Here() const { return tokens_[position_]; }
  /// The one before, behind which something is missing; the first one at the start.
  const Token& Last() const { return tokens_[position_ == 0 ? 0 : position_ - 1]; }
  /// The text of the one behind.
  const std::string& Next() const { return tokens_[AtEnd() ? position_ : position_ + 1].Text; }
  bool AtEnd() const { return Here().Kind == TokenKind::End; }

  bool SeesWord(std::string_view word) const {
    return Here().Kind == TokenKind::Word && Here().Text == word;
  }
  bool SeesSymbol(std::string_view symbol) const {
    return Here().Kind == TokenKind::Symbol && Here().Text == symbol;
  }
  bool TakeWord(std::string_view word);
  bool TakeSymbol(std::string_view symbol);
  const Token& Take();
  std::optional<std::string> TakeString();

  /// Reports what is missing and gives up unless it is there.
  void NeedWord(std::string_view word, std::string_view where);
  void NeedSymbol(std::string_view symbol, std::string_view where);
  /// A name that is no keyword, without dots.
  const Token& NeedName(std::string_view what);
  /// A missing semicolon at the end of a line is reported, and the reading goes on behind it.
  void NeedSemicolon(std::string_view where);

  /// Reports that something else was needed here.
  [[noreturn]] void Refuse(std::string_view needed);
  [[noreturn]] void Refuse(Place where, const std::string& text);

  /// Goes on behind the next semicolon, or to a word with which a section begins or ends.
  void SkipToNext();

 private:
  ProblemList& problems_;
  std::vector<Token> tokens_;
  std::size_t position_ = 0;
};

}  // namespace torvane::loops
