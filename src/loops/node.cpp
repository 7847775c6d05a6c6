#include "loops/node.h"

#include <algorithm>
#include <functional>
#include <map>
#include <queue>
#include <utility>

namespace torvane::loops {

void AddNeeds(const Term& term, std::vector<int>& needs) {
  if (term.IsLeaf()) needs.push_back(term.Register);
  for (const Term& part : term.Parts) AddNeeds(part, needs);
}

namespace {

/// Which nodes wait for which.
struct Waiting {
  explicit Waiting(const std::vector<Node>& nodes)
      : For(nodes.size()), Followers(nodes.size()), Open(nodes.size()) {
    std::map<int, std::size_t> giver;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      for (const int reg : nodes[i].Gives) giver[reg] = i;
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      for (const int reg : nodes[i].Needs) {
        const auto found = giver.find(reg);
        if (found == giver.end()) continue;
        For[i].push_back(found->second);
        Followers[found->second].push_back(i);
        ++Open[i];
      }
    }
  }

  std::vector<std::vector<std::size_t>> For;
  std::vector<std::vector<std::size_t>> Followers;
  std::vector<std::size_t> Open;
};

// Among nodes that all wait: follow one after the other until one comes again.
std::vector<std::size_t> Circle(const Waiting& waiting, const std::vector<bool>& done) {
  const auto first = std::find(done.begin(), done.end(), false);
  std::size_t at = static_cast<std::size_t>(first - done.begin());
  std::vector<std::size_t> path;
  while (std::find(path.begin(), path.end(), at) == path.end()) {
    path.push_back(at);
    const auto& next = waiting.For[at];
    at = *std::find_if(next.begin(), next.end(), [&](std::size_t i) { return !done[i]; });
  }
  path.erase(path.begin(), std::find(path.begin(), path.end(), at));
  // It begins where it is written first.
  std::rotate(path.begin(), std::min_element(path.begin(), path.end()), path.end());
  return path;
}

}  // namespace

bool Sort(std::vector<Node>& nodes, ProblemList& problems, const std::string& circle) {
  Waiting waiting(nodes);
  std::priority_queue<std::size_t, std::vector<std::size_t>, std::greater<>> ready;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (waiting.Open[i] == 0) ready.push(i);
  }
  std::vector<Node> sorted;
  std::vector<bool> done(nodes.size(), false);
  while (!ready.empty()) {
    const std::size_t at = ready.top();
    ready.pop();
    done[at] = true;
    sorted.push_back(std::move(nodes[at]));
    for (const std::size_t follower : waiting.Followers[at]) {
      if (--waiting.Open[follower] == 0) ready.push(follower);
    }
  }
  if (sorted.size() == nodes.size()) {
    nodes = std::move(sorted);
    return true;
  }
  const std::vector<std::size_t> path = Circle(waiting, done);
  std::string names;
  for (const std::size_t i : path) names += nodes[i].Name + " needs ";
  names += nodes[path.front()].Name;
  problems.Error(nodes[path.front()].Where, circle + ": " + names);
  return false;
}

}  // namespace torvane::loops
