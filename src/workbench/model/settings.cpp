#include "workbench/model/settings.h"

#include "core/messages.h"
#include "study/setting.h"
#include "workbench/model/assignment.h"
#include "workbench/model/wave_files.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

constexpr const char* FileKey = "File";

Assignment SplitWave(const std::string& text) {
  const bool named = text.find('=') != std::string::npos;
  return named ? SplitAssignment("--wave", text) : Assignment{FileKey, text};
}

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

std::string PlayedFile(const std::string& assignment) {
  const Assignment wave = SplitWave(assignment);
  const std::string key = wave.Name.substr(wave.Name.rfind(':') + 1);
  return key == FileKey ? WaveFiles::Split(wave.Value).first : std::string();
}

void ApplyWave(ZelBenchTop& bench, const std::string& text, WaveFiles& files) {
  const Assignment assignment = SplitWave(text);
  std::string key = assignment.Name;
  ZelWave& generator = AddressedGenerator(bench, key);
  if (key == FileKey) {
    generator.Play(files.Table(assignment.Value));
    return;
  }
  Apply(ModelSetting::OfGenerator(bench, assignment.Name), assignment);
}

}  // namespace torvane
