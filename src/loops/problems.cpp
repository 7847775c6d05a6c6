#include "loops/problems.h"

#include <algorithm>

#include "core/names.h"

namespace torvane::loops {

std::string Quoted(std::string_view text) {
  std::string quoted(1, '"');
  quoted.append(text);
  quoted += '"';
  return quoted;
}

bool HasErrors(const std::vector<Problem>& problems) {
  return std::any_of(problems.begin(), problems.end(), [](const Problem& p) { return !p.Warning; });
}

void ProblemList::Unknown(Place where, const std::string& what, const std::string& text,
                          const std::function<std::vector<std::string>()>& names, bool warning) {
  constexpr std::size_t MostSearched = 30000;
  std::vector<std::string> known;
  if (searched_ < MostSearched && problems_.size() < Most) known = names();
  for (const std::string& name : known) searched_ += name.size() + 1;
  Add({where, UnknownNameText(what, text, known), warning});
}

std::vector<Problem> ProblemList::Sorted() const {
  std::vector<Problem> sorted = problems_;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Problem& a, const Problem& b) { return a.Where < b.Where; });
  return sorted;
}

void ProblemList::Add(const Problem& problem) {
  const bool told = std::any_of(problems_.begin(), problems_.end(), [&](const Problem& other) {
    return other.Where == problem.Where && other.Text == problem.Text;
  });
  if (told) return;
  if (!problem.Warning) ++errors_;
  if (problems_.size() < Most) problems_.push_back(problem);
}

}  // namespace torvane::loops
