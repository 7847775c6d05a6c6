#include "drawing/loop_graph.h"

#include <algorithm>
#include <set>

#include "drawing/graph_builder.h"

namespace torvane::drawing {

namespace {

bool IsOffered(const Output& output) {
  return std::any_of(output.Names.begin(), output.Names.end(),
                     [](const SignalName& name) { return name.Offered; });
}

std::vector<int> Consumers(const BlockGraph& graph) {
  std::vector<int> consumers(graph.Outputs.size());
  for (const Node& node : graph.Nodes) {
    for (const Input& input : node.Inputs) ++consumers[At(input.From)];
  }
  return consumers;
}

void AddNeeded(const BlockGraph& graph, int node, std::vector<bool>& needed) {
  if (node < 0 || needed[At(node)]) return;
  needed[At(node)] = true;
  for (const Input& input : graph.Nodes[At(node)].Inputs) {
    AddNeeded(graph, graph.Outputs[At(input.From)].Node, needed);
  }
}

// Removes all nodes but those.
void Keep(BlockGraph& graph, const std::vector<bool>& kept) {
  std::vector<int> now(graph.Nodes.size(), -1);
  std::vector<Node> nodes;
  for (std::size_t k = 0; k < kept.size(); ++k) {
    if (!kept[k]) continue;
    now[k] = static_cast<int>(nodes.size());
    nodes.push_back(std::move(graph.Nodes[k]));
  }
  graph.Nodes = std::move(nodes);
  if (graph.Command >= 0) graph.Command = now[At(graph.Command)];
  for (Output& output : graph.Outputs) {
    if (output.Node >= 0) output.Node = now[At(output.Node)];
  }
}

// What is a number that goes nowhere is no part of the loop.
void SetApartLoneSignals(BlockGraph& graph) {
  const std::vector<int> consumers = Consumers(graph);
  std::vector<bool> kept(graph.Nodes.size(), true);
  for (std::size_t k = 0; k < kept.size(); ++k) {
    const Node& node = graph.Nodes[k];
    const bool number = node.What == Node::Sign::Box && node.Inputs.empty();
    if (!number || node.Outputs.size() != 1 || consumers[At(node.Outputs[0])] > 0) continue;
    kept[k] = false;
    for (const SignalName& name : graph.Outputs[At(node.Outputs[0])].Names) {
      if (name.Offered) graph.OtherSignals.push_back(name.Name);
    }
  }
  Keep(graph, kept);
}

void LeaveOutUnneeded(BlockGraph& graph) {
  std::vector<bool> needed(graph.Nodes.size());
  for (const Output& output : graph.Outputs) {
    if (IsOffered(output)) AddNeeded(graph, output.Node, needed);
  }
  AddNeeded(graph, graph.Command, needed);
  Keep(graph, needed);
}

// A name that serves a single equation is left out, unless instruments are offered it.
void AddLabels(BlockGraph& graph) {
  const std::vector<int> consumers = Consumers(graph);
  const std::size_t outputs = graph.Outputs.size();
  std::vector<int> labelled(outputs, -1);
  std::vector<Node> labels;
  for (std::size_t k = 0; k < outputs; ++k) {
    const std::vector<SignalName> named = graph.Outputs[k].Names;
    if (graph.Outputs[k].Node < 0 || named.empty()) continue;
    const bool offered = IsOffered(graph.Outputs[k]);
    if (!offered && consumers[k] < 2) continue;
    Node label;
    label.What = Node::Sign::Label;
    for (const SignalName& name : named) {
      if (offered && !name.Offered) continue;
      label.Texts.push_back({{name.Name, name.Offered ? Run::Kind::Signal : Run::Kind::Quiet}});
    }
    label.Inputs.push_back({static_cast<int>(k), {}});
    labelled[k] = static_cast<int>(graph.Outputs.size());
    label.Outputs.push_back(labelled[k]);
    const int node = static_cast<int>(graph.Nodes.size() + labels.size());
    graph.Outputs.push_back({node, {}, named, -1});
    labels.push_back(std::move(label));
  }
  for (Node& node : graph.Nodes) {
    for (Input& input : node.Inputs) {
      if (labelled[At(input.From)] >= 0) input.From = labelled[At(input.From)];
    }
  }
  for (Node& label : labels) graph.Nodes.push_back(std::move(label));
}

void PlaceConstants(BlockGraph& graph, const loops::LoopPlan& plan) {
  std::set<std::string> placed;
  std::set<std::string> constants;
  for (const auto& constant : plan.Constants) constants.insert(constant.Name);
  for (const Node& node : graph.Nodes) {
    const auto known = std::find(graph.Clocks.begin(), graph.Clocks.end(), node.Clock);
    if (node.Clock.empty() || known != graph.Clocks.end()) continue;
    graph.Clocks.push_back(node.Clock);
    graph.ClockConstant.push_back(constants.contains(node.Clock) ? node.Clock : "");
  }
  // First where it is a gain by itself, last where it only decides something.
  const auto place = [&](Node& node, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (placed.insert(name).second) node.Rooms.push_back(name);
    }
  };
  for (Node& node : graph.Nodes) {
    const bool gain = node.What == Node::Sign::Box && node.Texts.size() == 1 &&
                      node.Texts[0].size() == 1 && node.Mentions.size() == 1;
    if (gain) place(node, node.Mentions);
  }
  for (Node& node : graph.Nodes) place(node, node.Mentions);
  for (Node& node : graph.Nodes) place(node, node.Aside);
  for (const auto& constant : plan.Constants) {
    if (!placed.contains(constant.Name)) graph.OtherConstants.push_back(constant.Name);
  }
}

}  // namespace

BlockGraph GraphOf(const loops::ModelText& text, const loops::LoopPlan& plan) {
  BlockGraph graph = GraphBuilder(text, plan).Build();
  LeaveOutUnneeded(graph);
  SetApartLoneSignals(graph);
  AddLabels(graph);
  PlaceConstants(graph, plan);
  return graph;
}

}  // namespace torvane::drawing
