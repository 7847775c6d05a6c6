#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "loops/problems.h"

namespace torvane::loops {

enum class TokenKind { Word, QuotedWord, Number, String, Symbol, End };

struct Token {
  TokenKind Kind = TokenKind::End;
  std::string Text;  ///< without quotes
  double Number = 0.0;
  Place Where;
  Place After;  ///< where the token ends
};

/// Splits a loop's text; comments and blanks go. The last token is an End. What is no token is
/// reported and left out.
std::vector<Token> Tokens(std::string_view text, ProblemList& problems);

}  // namespace torvane::loops
