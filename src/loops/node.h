#pragma once

#include <string>
#include <vector>

#include "loops/problems.h"
#include "loops/term.h"

namespace torvane::loops {

/// One thing that an evaluation does, which needs registers and gives some.
struct Node {
  enum class Kind {
    Assign,  ///< Target takes Value
    Output,  ///< of the block
    Reinit,  ///< while Condition holds, state Target takes Value at the end of the step
  };

  Kind What = Kind::Assign;
  std::string Name;
  Place Where;
  int Target = -1;
  Term Value;
  Term Condition;
  int Block = -1;
  int Clock = -1;  ///< it happens at that clock's samples only
  std::vector<int> Needs;
  std::vector<int> Gives;
};

/// Adds the registers that a term reads.
void AddNeeds(const Term& term, std::vector<int>& needs);

/// Puts nodes in an order in which each finds what it needs, the written one where that is free. A
/// circle is reported with its names and gives false.
bool Sort(std::vector<Node>& nodes, ProblemList& problems, const std::string& circle);

}  // namespace torvane::loops
