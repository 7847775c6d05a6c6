#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "drawing/block_graph.h"
#include "loops/loop_plan.h"
#include "loops/syntax.h"

namespace torvane::drawing {

/// What a loop's text declares, by name.
class LoopNames {
 public:
  /// Both outlive it.
  LoopNames(const loops::ModelText& text, const loops::LoopPlan& plan);

  /// nullptr for a name of nothing that the text declares.
  const loops::Component* Find(const std::string& name) const;
  /// Whether it depends on parameters and literals alone.
  bool IsConstant(const loops::Expression& expression) const;
  bool IsSignal(const loops::Component& component) const;
  /// A parameter that users change.
  bool IsChanged(const loops::Component& component) const;
  /// The name in instruments and files.
  static std::string Shown(const loops::Component& component);
  /// Adds the constants that the expression depends on, also by way of parameters that follow.
  void AddMentioned(const loops::Expression& expression, std::vector<std::string>& names) const;

 private:
  void AddMentioned(const loops::Expression& expression, std::vector<std::string>& names,
                    std::set<std::string>& seen) const;

  std::map<std::string, const loops::Component*> components_;
  std::set<std::string> changed_;
};

/// Whether they say the same.
bool Same(const loops::Expression& a, const loops::Expression& b);

}  // namespace torvane::drawing
