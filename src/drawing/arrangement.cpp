#include "drawing/arrangement.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <optional>
#include <set>

namespace torvane::drawing {

namespace {

/// One column is at least so many behind another.
struct Distance {
  std::size_t Left;
  std::size_t Right;
  int Least;
};

constexpr int Unreached = std::numeric_limits<int>::max() / 2;
constexpr std::size_t MostTurned = 24;  ///< nodes at once
constexpr int ClosedLoop = 100;         ///< what passing a point of comparison is worth, in blocks

// What is subtracted, or compared with the command.
bool IsFeedbackMark(const std::string& mark) {
  return mark == "−" || mark == "u_m";
}

class Arranger {
 public:
  explicit Arranger(const BlockGraph& graph) : graph_(graph), size_(graph.Nodes.size()) {
    into_.resize(size_);
    outOf_.resize(size_);
    for (std::size_t to = 0; to < size_; ++to) {
      for (const Input& input : graph.Nodes[to].Inputs) {
        const int from = graph.Outputs[static_cast<std::size_t>(input.From)].Node;
        outOf_[static_cast<std::size_t>(from)].push_back(to);
        if (IsFeedbackMark(input.Mark) || graph.Nodes[to].Delays) {
          likelyBack_.insert({static_cast<std::size_t>(from), to});
        }
        into_[to].push_back(static_cast<std::size_t>(from));
      }
    }
    made_.Backwards.resize(size_);
    made_.Main.resize(size_);
    made_.Outside.resize(size_, true);
  }

  Arrangement Make() {
    OrderNodes();
    FindBackwards();
    const auto columns = Columns();
    made_.Columns = *columns;
    FindOutside();
    MoveRight();
    FindMain();
    const int first = size_ ? *std::min_element(made_.Columns.begin(), made_.Columns.end()) : 0;
    for (int& column : made_.Columns) column -= first;
    return std::move(made_);
  }

 private:
  // Each behind all that it needs, but for what closes a circle: what the command reaches, and
  // before it what only others do. A difference or a sample's delay closes it wherever it can.
  void OrderNodes() {
    std::vector<bool> seen(size_);
    const auto visit = [&](const auto& isRoot, bool all) {
      std::vector<std::size_t> behind;
      for (std::size_t k = 0; k < size_; ++k) {
        if (isRoot(k)) Visit(k, all, seen, behind);
      }
      return std::vector<std::size_t>(behind.rbegin(), behind.rend());
    };
    const auto isReached = [&](std::size_t k) {
      return std::any_of(into_[k].begin(), into_[k].end(),
                         [&](std::size_t from) { return seen[from]; });
    };
    const auto command =
        visit([&](std::size_t k) { return static_cast<int>(k) == graph_.Command; }, false);
    const auto sources = visit([&](std::size_t k) { return into_[k].empty(); }, false);
    const auto delays = visit(isReached, true);
    const auto others = visit([](std::size_t) { return true; }, true);
    made_.Order.resize(size_);
    int position = 0;
    for (const auto* const part : {&others, &sources, &command, &delays}) {
      for (const std::size_t node : *part) made_.Order[node] = position++;
    }
  }

  void Visit(std::size_t root, bool all, std::vector<bool>& seen,
             std::vector<std::size_t>& behind) const {
    if (seen[root]) return;
    seen[root] = true;
    std::vector<std::pair<std::size_t, std::size_t>> open{{root, 0}};
    while (!open.empty()) {
      auto& [node, next] = open.back();
      if (next == outOf_[node].size()) {
        behind.push_back(node);
        open.pop_back();
        continue;
      }
      const std::size_t to = outOf_[node][next++];
      if (seen[to] || (!all && likelyBack_.contains({node, to}))) continue;
      seen[to] = true;
      open.emplace_back(to, 0);
    }
  }

  bool IsForward(std::size_t from, std::size_t to) const {
    return made_.Order[from] < made_.Order[to];
  }

  std::vector<Distance> Distances() const {
    std::vector<Distance> distances;
    for (std::size_t to = 0; to < size_; ++to) {
      for (const std::size_t from : into_[to]) {
        const bool back = made_.Backwards[to];
        const bool fromBack = made_.Backwards[from];
        if (fromBack == back && !IsForward(from, to)) continue;
        if (fromBack) {
          distances.push_back({to, from, 1});
        } else if (back) {
          distances.push_back({to, from, 0});
        } else {
          distances.push_back({from, to, 1});
        }
      }
    }
    return distances;
  }

  // The least column of each; nothing when they go in a circle.
  std::optional<std::vector<int>> Columns() const {
    const auto distances = Distances();
    std::vector<std::vector<std::size_t>> rightOf(size_);
    std::vector<std::size_t> missing(size_);
    for (std::size_t k = 0; k < distances.size(); ++k) {
      rightOf[distances[k].Left].push_back(k);
      ++missing[distances[k].Right];
    }
    std::vector<int> columns(size_);
    std::vector<std::size_t> ready;
    for (std::size_t k = 0; k < size_; ++k) {
      if (missing[k] == 0) ready.push_back(k);
    }
    std::size_t done = 0;
    for (; done < ready.size(); ++done) {
      for (const std::size_t k : rightOf[ready[done]]) {
        const Distance& d = distances[k];
        columns[d.Right] = std::max(columns[d.Right], columns[d.Left] + d.Least);
        if (--missing[d.Right] == 0) ready.push_back(d.Right);
      }
    }
    if (done < size_) return {};
    return columns;
  }

  // Walks back from what closes a circle, as long as all goes back.
  void FindBackwards() {
    FindKept();
    std::deque<std::size_t> candidates;
    for (std::size_t to = 0; to < size_; ++to) {
      for (const std::size_t from : into_[to]) {
        if (!IsForward(from, to)) candidates.push_back(from);
      }
    }
    for (; !candidates.empty(); candidates.pop_front()) {
      std::vector<std::size_t> turned;
      if (outOf_[candidates.front()].empty()) continue;
      if (!CanTurn(candidates.front(), turned) || turned.empty()) continue;
      if (!Turn(turned)) continue;
      for (const std::size_t k : turned) {
        candidates.insert(candidates.end(), into_[k].begin(), into_[k].end());
      }
    }
  }

  // Of a loop without a plant the last block looks forward, and with it all before it.
  void FindKept() {
    const auto& nodes = graph_.Nodes;
    if (std::any_of(nodes.begin(), nodes.end(), [](const Node& n) { return n.IsPlant; })) return;
    for (std::size_t k = 0; k < size_; ++k) {
      const bool block = nodes[k].What >= Node::Sign::Box && nodes[k].What < Node::Sign::Label;
      if (!block || into_[k].empty() || outOf_[k].empty()) continue;
      if (!kept_ || made_.Order[k] > made_.Order[*kept_]) kept_ = k;
    }
  }

  // With more and more of what feeds it, until that leaves an order from left to right.
  bool Turn(std::vector<std::size_t>& turned) {
    while (true) {
      for (const std::size_t k : turned) made_.Backwards[k] = true;
      if (Columns()) return true;
      for (const std::size_t k : turned) made_.Backwards[k] = false;
      std::vector<std::size_t> more = turned;
      for (const std::size_t k : turned) {
        for (const std::size_t from : into_[k]) {
          std::vector<std::size_t> with = more;
          if (CanTurn(from, with)) more = std::move(with);
        }
      }
      if (more.size() == turned.size()) return false;
      turned = std::move(more);
    }
  }

  // A name goes with what it is the name of, and with a node all that it feeds.
  bool CanTurn(std::size_t node, std::vector<std::size_t>& turned) const {
    if (made_.Backwards[node] || std::find(turned.begin(), turned.end(), node) != turned.end()) {
      return true;
    }
    const Node& what = graph_.Nodes[node];
    if (what.What == Node::Sign::Source || what.IsPlant || node == kept_ ||
        what.Outputs.size() != 1 || turned.size() == MostTurned) {
      return false;
    }
    turned.push_back(node);
    for (const std::size_t to : outOf_[node]) {
      if (IsForward(node, to) && !CanTurn(to, turned)) return false;
    }
    return what.What != Node::Sign::Label || CanTurn(into_[node].front(), turned);
  }

  void FindOutside() {
    if (graph_.Command < 0) return;
    std::vector<std::size_t> open{static_cast<std::size_t>(graph_.Command)};
    made_.Outside[open[0]] = false;
    while (!open.empty()) {
      const std::size_t node = open.back();
      open.pop_back();
      for (const std::size_t to : outOf_[node]) {
        if (!made_.Outside[to]) continue;
        made_.Outside[to] = false;
        open.push_back(to);
      }
    }
  }

  // What feeds back stands near what it comes from, a disturbance near what it acts on.
  void MoveRight() {
    const auto distances = Distances();
    std::vector<std::vector<std::size_t>> leftOf(size_);
    for (std::size_t k = 0; k < distances.size(); ++k) leftOf[distances[k].Left].push_back(k);
    std::vector<std::size_t> nodes(size_);
    for (std::size_t k = 0; k < size_; ++k) nodes[k] = k;
    std::sort(nodes.begin(), nodes.end(),
              [&](std::size_t a, std::size_t b) { return made_.Columns[a] > made_.Columns[b]; });
    for (const std::size_t k : nodes) {
      if (!made_.Backwards[k] && !made_.Outside[k]) continue;
      int column = Unreached;
      for (const std::size_t d : leftOf[k]) {
        column = std::min(column, made_.Columns[distances[d].Right] - distances[d].Least);
      }
      if (column != Unreached) made_.Columns[k] = column;
    }
  }

  // The shortest way to the last column through the most points of comparison.
  void FindMain() {
    if (graph_.Command < 0) return;
    std::vector<std::size_t> nodes(size_);
    for (std::size_t k = 0; k < size_; ++k) nodes[static_cast<std::size_t>(made_.Order[k])] = k;
    std::vector<int> cost(size_, Unreached);
    std::vector<std::size_t> before(size_);
    const auto command = static_cast<std::size_t>(graph_.Command);
    cost[command] = 0;
    std::size_t last = command;
    for (const std::size_t to : nodes) {
      if (made_.Backwards[to]) continue;
      bool compares = false;
      for (const std::size_t from : into_[to]) {
        const bool ahead = !made_.Backwards[from] && IsForward(from, to);
        const bool named = graph_.Nodes[from].What == Node::Sign::Label;
        compares = compares || made_.Backwards[from] || (!ahead && named);
        if (!ahead || cost[from] >= cost[to]) continue;
        cost[to] = cost[from];
        before[to] = from;
      }
      if (to == command || cost[to] == Unreached) continue;
      cost[to] += compares && graph_.Nodes[to].What == Node::Sign::Sum ? -ClosedLoop : 1;
      if (IsBetterEnd(to, last, cost)) last = to;
    }
    for (; last != command; last = before[last]) made_.Main[last] = true;
    made_.Main[command] = true;
  }

  bool IsBetterEnd(std::size_t a, std::size_t b, const std::vector<int>& cost) const {
    const auto isResponse = [&](std::size_t k) {
      const Node& node = graph_.Nodes[k];
      return node.What == Node::Sign::Label && node.Texts[0][0].Text == graph_.Response;
    };
    if (isResponse(a) != isResponse(b)) return isResponse(a);
    const bool moreLoops = cost[a] / ClosedLoop < cost[b] / ClosedLoop;
    const bool lessLoops = cost[a] / ClosedLoop > cost[b] / ClosedLoop;
    return moreLoops || (!lessLoops && made_.Columns[a] > made_.Columns[b]);
  }

  const BlockGraph& graph_;
  std::size_t size_;
  std::vector<std::vector<std::size_t>> into_;   ///< of each node those that feed it
  std::vector<std::vector<std::size_t>> outOf_;  ///< and those that it feeds
  std::set<std::pair<std::size_t, std::size_t>> likelyBack_;
  std::optional<std::size_t> kept_;  ///< never turned
  Arrangement made_;
};

}  // namespace

bool Arrangement::IsAhead(const BlockGraph& graph, int node, int from) const {
  const auto to = static_cast<std::size_t>(node);
  const auto source = static_cast<std::size_t>(graph.Outputs[static_cast<std::size_t>(from)].Node);
  const int distance = Columns[to] - Columns[source];
  if (!Backwards[to]) return !Backwards[source] && distance > 0;
  return Backwards[source] ? distance < 0 : distance <= 0;
}

Arrangement Arrange(const BlockGraph& graph) {
  return Arranger(graph).Make();
}

}  // namespace torvane::drawing
