#include "cli/settings.h"

#include "cli/assignment.h"
#include "cli/names.h"
#include "core/bench.h"
#include "core/constant.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

Constant& NamedConstant(const ZelBenchTop& bench, const std::string& name) {
  if (Constant* const constant = bench.FindConst(name)) return *constant;
  std::vector<std::string> names;
  for (const Constant* constant : bench.Constants()) names.push_back(constant->Name());
  throw UnknownName("constant", name, names);
}

}  // namespace

void ApplySetting(ZelBenchTop& bench, const std::string& text) {
  const Assignment assignment = SplitAssignment("--set", text);
  Constant& constant = NamedConstant(bench, assignment.Name);
  if (constant.IsList()) {
    constant.Set(AssignedChoice(assignment, constant.Choices()));
    return;
  }
  const double wanted = AssignedNumber(assignment);
  constant.Set(wanted);
  if (constant.Value() != wanted) {
    NoteLimited(assignment.Name, FormatShortest(constant.Value()));
  }
}

}  // namespace torvane::cli
