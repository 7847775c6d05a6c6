#include "loops/lexer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "core/text.h"

namespace torvane::loops {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool StartsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// What to write for a sign of other languages.
std::string InsteadOf(char sign) {
  switch (sign) {
    case '&':
      return "; write \"and\"";
    case '|':
      return "; write \"or\"";
    case '!':
      return "; write \"not\", or \"<>\" for unequal";
    case '%':
      return "; write mod(a, b), or // before a remark";
    case '?':
      return "; write \"if ... then ... else ...\"";
    default:
      return "";
  }
}

class Lexer {
 public:
  Lexer(std::string_view text, ProblemList& problems) : text_(text), problems_(problems) {}

  std::vector<Token> All() {
    constexpr std::size_t UsualLength = 5;  // of a token and the blanks behind it
    tokens_.reserve(text_.size() / UsualLength + 1);
    while (SkipBlanks()) ReadToken();
    start_ = place_;
    Add(TokenKind::End, {});
    return std::move(tokens_);
  }

 private:
  bool AtEnd() const { return position_ >= text_.size(); }
  char Peek(std::size_t ahead = 0) const {
    return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\0';
  }
  bool Sees(std::string_view pair) const { return Peek() == pair[0] && Peek(1) == pair[1]; }

  char Take() {
    const char c = text_[position_++];
    if (c == '\n') {
      ++place_.Line;
      place_.Column = 1;
    } else if (!IsContinuation(c)) {
      ++place_.Column;
    }
    return c;
  }

  // False at the end of the text.
  bool SkipBlanks() {
    while (!AtEnd()) {
      const char c = Peek();
      if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
        Take();
      } else if (Sees("//")) {
        while (!AtEnd() && Peek() != '\n') Take();
      } else if (Sees("/*")) {
        SkipComment();
      } else {
        return true;
      }
    }
    return false;
  }

  void SkipComment() {
    const Place start = place_;
    Take();
    Take();
    while (!AtEnd() && !Sees("*/")) Take();
    if (AtEnd()) {
      problems_.Error(start, "this comment has no end: */ is missing");
      return;
    }
    Take();
    Take();
  }

  void ReadToken() {
    start_ = place_;
    const char c = Peek();
    if (StartsWord(c)) {
      const std::size_t begin = position_;
      while (StartsWord(Peek()) || IsDigit(Peek())) Take();
      Add(TokenKind::Word, std::string(text_.substr(begin, position_ - begin)));
    } else if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
      ReadNumber();
    } else if (c == '"') {
      ReadString();
    } else if (c == '\'') {
      ReadQuotedWord();
    } else {
      ReadSymbol();
    }
  }

  void ReadNumber() {
    std::string digits;
    const auto takeDigits = [&] {
      while (IsDigit(Peek())) digits += Take();
    };
    takeDigits();
    if (Peek() == '.') {
      digits += Take();
      takeDigits();
    }
    const std::size_t sign = Peek(1) == '+' || Peek(1) == '-' ? 1 : 0;
    if ((Peek() == 'e' || Peek() == 'E') && IsDigit(Peek(1 + sign))) {
      digits += Take();
      if (sign > 0) digits += Take();
      takeDigits();
    }
    if (StartsWord(Peek())) {
      problems_.Error(place_, "a number ends here; \"" + std::string(1, Peek()) +
                                  "\" does not belong to it (* is missing?)");
    }
    const std::optional<double> value = ParseNumber(digits);
    if (!value) problems_.Error(start_, "the number " + digits.substr(0, 40) + " is out of range");
    Add(TokenKind::Number, std::move(digits));
    tokens_.back().Number = value.value_or(0.0);
  }

  void ReadString() {
    Take();
    std::string value;
    while (!AtEnd() && Peek() != '"') {
      char c = Take();
      if (c == '\\' && !AtEnd()) {
        c = Take();
        if (c == 'n') c = '\n';
        if (c == 't') c = '\t';
      }
      value += c;
    }
    Close("this text has no end: \" is missing");
    Add(TokenKind::String, std::move(value));
  }

  void ReadQuotedWord() {
    Take();
    std::string value;
    while (!AtEnd() && Peek() != '\'' && Peek() != '\n') value += Take();
    Close("this name has no end: ' is missing");
    // Model files keep names between commas in lines.
    const bool storable = std::all_of(value.begin(), value.end(), [](char c) {
      return static_cast<unsigned char>(c) >= ' ' && c != ',' && c != '\x7f';
    });
    if (!storable || value.empty() || value.front() == ' ' || value.back() == ' ') {
      problems_.Error(start_,
                      "a name in ' ' must have a character, and neither commas nor blanks at its "
                      "ends");
    }
    Add(TokenKind::QuotedWord, std::move(value));
  }

  void Close(const char* missing) {
    if (AtEnd() || Peek() == '\n') {
      problems_.Error(start_, missing);
    } else {
      Take();
    }
  }

  void ReadSymbol() {
    static constexpr std::array<std::string_view, 10> pairs{":=", "<=", ">=", "==", "<>",
                                                            ".+", ".-", ".*", "./", ".^"};
    static constexpr std::string_view singles = "(){}[],;:=.+-*/^<>";
    for (const std::string_view pair : pairs) {
      if (!Sees(pair)) continue;
      Take();
      Take();
      return Add(TokenKind::Symbol, std::string(pair));
    }
    const char c = Take();
    if (singles.find(c) != std::string_view::npos) return Add(TokenKind::Symbol, {c});
    while (!AtEnd() && IsContinuation(Peek())) Take();
    // One report for a run of them.
    if (lastBad_ == Place{start_.Line, start_.Column - 1}) {
      lastBad_ = start_;
      return;
    }
    lastBad_ = start_;
    const bool shown = c > ' ' && c < '\x7f';
    problems_.Error(start_, (shown ? Quoted({&c, 1}) : "this character") + " has no meaning here" +
                                InsteadOf(c));
  }

  void Add(TokenKind kind, std::string text) {
    Token& token = tokens_.emplace_back();
    token.Kind = kind;
    token.Text = std::move(text);
    token.Where = start_;
    token.After = place_;
  }

  std::string_view text_;
  ProblemList& problems_;
  std::size_t position_ = 0;
  Place place_;
  Place start_;
  Place lastBad_{0, 0};
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> Tokens(std::string_view text, ProblemList& problems) {
  return Lexer(text, problems).All();
}

}  // namespace torvane::loops
