#include "cli/model/settings.h"

#include "cli/command_error.h"
#include "cli/model/assignment.h"
#include "core/messages.h"
#include "study/setting.h"

namespace torvane::cli {
namespace {

void Apply(ModelSetting setting, const Assignment& assignment) {
  setting.Set(assignment.Value);
  const std::string remark = setting.Remark();
  if (!remark.empty()) Note(remark);
}

}  // namespace

void ApplySetting(ZelBenchTop& bench, const std::string& text) {
  const Assignment assignment = SplitAssignment("--set", text);
  Apply(ModelSetting::OfConstant(bench, assignment.Name), assignment);
}

void ApplyWave(ZelBenchTop& bench, const std::string& text) {
  const Assignment assignment = SplitAssignment("--wave", text);
  Apply(ModelSetting::OfGenerator(bench, assignment.Name), assignment);
}

}  // namespace torvane::cli
