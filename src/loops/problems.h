#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::loops {

/// A place in a loop's text, line and column counted from 1. Columns count characters.
struct Place {
  int Line = 1;
  int Column = 1;
  bool operator==(const Place&) const = default;
  bool operator<(const Place& other) const {
    return Line != other.Line ? Line < other.Line : Column < other.Column;
  }
};

/// The text in quotation marks.
std::string Quoted(std::string_view text);

/// Something that is wrong with a loop's text, or doubtful in it.
struct Problem {
  Place Where;
  std::string Text;
  bool Warning = false;
};

/// Whether one of them is more than a warning.
bool HasErrors(const std::vector<Problem>& problems);

/// What is found while a text is read; reading goes on, so that a user sees all of it at once.
class ProblemList {
 public:
  /// More of them help nobody: what follows is counted only.
  static constexpr std::size_t Most = 100;

  void Error(Place where, const std::string& text) { Add({where, text, false}); }
  void Warn(Place where, const std::string& text) { Add({where, text, true}); }
  /// That there is no such name, with the nearest of those that there are; these are asked
  /// for only while the search among them takes a moment altogether.
  void Unknown(Place where, const std::string& what, const std::string& text,
               const std::function<std::vector<std::string>()>& names, bool warning = false);
  /// What has been said of a place is not said twice.
  void Add(const Problem& problem);
  bool HasErrors() const { return errors_ > 0; }
  /// In the order of their places.
  std::vector<Problem> Sorted() const;

 private:
  std::vector<Problem> problems_;
  std::size_t errors_ = 0;
  std::size_t searched_ = 0;  ///< characters of names
};

}  // namespace torvane::loops
