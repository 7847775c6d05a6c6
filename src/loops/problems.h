#pragma once

#include <compare>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::loops {

/// A place in a loop's text, line and column counted from 1. Columns count characters.
struct Place {
  int Line = 1;
  int Column = 1;
  auto operator<=>(const Place&) const = default;
};

/// The text in quotation marks.
std::string Quoted(std::string_view text);

/// Something that is wrong with a loop's text, or doubtful in it.
struct Problem {
  Place Where;
  std::string Text;
  bool Warning = false;
};

/// What is found while a text is read; reading goes on, so that a user sees all of it at once.
class ProblemList {
 public:
  /// More of them help nobody: what follows is counted only.
  static constexpr std::size_t Most = 100;

  void Error(Place where, const std::string& text) { Add({where, text, false}); }
  void Warn(Place where, const std::string& text) { Add({where, text, true}); }
  bool HasErrors() const { return errors_ > 0; }
  /// In the order of their places.
  std::vector<Problem> Sorted() const;

 private:
  void Add(const Problem& problem);

  std::vector<Problem> problems_;
  std::size_t errors_ = 0;
};

}  // namespace torvane::loops
