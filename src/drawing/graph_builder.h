#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "drawing/block_graph.h"
#include "drawing/equation_list.h"
#include "drawing/formula.h"
#include "drawing/loop_names.h"

namespace torvane::drawing {

/// Takes equations apart into blocks: sums, gains, integrators, switches and what the library has;
/// whatever has no sign of its own becomes a box with a shortened text.
class GraphBuilder {
 public:
  /// Both outlive it.
  GraphBuilder(const loops::ModelText& text, const loops::LoopPlan& plan);

  /// All nodes and outputs; names of signals stand at the outputs, and some nodes may be needed by
  /// nobody.
  BlockGraph Build();

 private:
  using Terms = std::vector<std::pair<bool, const loops::Expression*>>;

  void DeclareOutputs();
  void AddBlock(const loops::Component& component);
  void BindBlock(const loops::Component& component);
  void Define(const Definition& definition);
  void Assign(const Definition& definition);
  bool Accumulate(const Definition& definition);
  void Integrate(const Definition& definition);
  bool IntegrateLag(const Definition& definition);
  void TellSettings();

  // An expression's output, with the nodes that it takes.
  int Value(const loops::Expression& e);
  int OfName(const std::string& name);
  int OfCall(const loops::Expression& e);
  int OfPrevious(const std::string& signal);
  int OfChoice(const loops::Expression& e, std::size_t branch);
  int OfSum(const loops::Expression& e);
  int SumOf(const Terms& terms);
  int OfProduct(const loops::Expression& e);
  int OfPower(const loops::Expression& e);
  int OfConstant(const loops::Expression& e);
  int OfFunction(const loops::Expression& e);
  int OfAnything(const loops::Expression& e);
  std::optional<int> OfPattern(const loops::Expression& e);
  int Gained(const Factors& factors, int from);

  std::vector<int> SignalsIn(const loops::Expression& e);
  void AddSignals(const loops::Expression& e, std::vector<int>& signals);
  void AddInputs(Node& node, const loops::Expression& e, const std::string& mark = "if");
  void Mention(Node& node, const loops::Expression& e) const;
  void Mention(Node& node, const Factors& factors) const;
  Line Told(const loops::Expression& e, std::size_t most) const;
  bool IsSampled(const loops::Expression& e) const;
  bool UsesSlope(const std::string& state) const { return slopesUsed_.contains(state); }

  int Add(Node node);
  /// Adds the node with one output.
  int AddOne(Node node);
  int NewOutput(int node, const std::string& mark);
  void Name(int output, int as);
  /// Follows names to the output itself.
  int Real(int output) const;
  void Resolve();

  const loops::ModelText& text_;
  const loops::LoopPlan& plan_;
  LoopNames names_;
  EquationList equations_;
  BlockGraph graph_;
  std::map<std::string, int> outputs_;   ///< of "x", "der(x)" and "block.y"
  std::map<std::string, int> previous_;  ///< of "pre(x)"
  std::set<std::string> sampled_;        ///< signals that change at samples only
  std::set<std::string> slopesUsed_;     ///< states whose derivatives stand in expressions
  std::string clock_;                    ///< of the equation being taken apart
};

}  // namespace torvane::drawing
