#include "loops/problems.h"

#include <algorithm>

namespace torvane::loops {

std::string Quoted(std::string_view text) {
  std::string quoted(1, '"');
  quoted.append(text);
  quoted += '"';
  return quoted;
}

std::vector<Problem> ProblemList::Sorted() const {
  std::vector<Problem> sorted = problems_;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Problem& a, const Problem& b) { return a.Where < b.Where; });
  return sorted;
}

void ProblemList::Add(const Problem& problem) {
  if (!problem.Warning) ++errors_;
  if (problems_.size() < Most) problems_.push_back(problem);
}

}  // namespace torvane::loops
