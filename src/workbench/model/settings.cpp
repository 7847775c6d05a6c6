#include "workbench/model/settings.h"

#include <algorithm>
#include <filesystem>

#include "core/messages.h"
#include "core/names.h"
#include "instruments/generator/wave.h"
#include "study/setting.h"
#include "workbench/model/assignment.h"
#include "workbench/model/wave_files.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

constexpr const char* FileKey = "File";

// A file's name may hold "=" too, as long as what is before it is no setting's.
bool IsFile(const std::string& text) {
  const auto equals = text.find('=');
  if (equals == std::string::npos) return true;
  const std::string name = text.substr(0, equals);
  const std::string key = name.substr(name.rfind(':') + 1);
  const auto& numbers = ZelWave::Numbers();
  const bool known = key == FileKey || key == "Waveform" ||
                     std::ranges::any_of(numbers, [&](const auto& one) { return key == one.Name; });
  std::error_code failure;
  const std::string file = WaveFiles::Split(text).first;
  return !known && (std::filesystem::exists(file, failure) || Lower(file).ends_with(".csv"));
}

Assignment SplitWave(const std::string& text) {
  return IsFile(text) ? Assignment{FileKey, text} : SplitAssignment("--wave", text);
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
