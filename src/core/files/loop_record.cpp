#include "core/files/loop_record.h"

#include "core/files/model_file_lines.h"
#include "core/text.h"

namespace torvane {

namespace {

constexpr std::string_view Keyword = "Loop,";

}  // namespace

std::string LoopRecord(const ZelModel& model) {
  const std::string& file = model.TextFile();
  if (!file.ends_with(LoopEnding)) return {};
  return AppendLine(std::string(Keyword) + file);
}

std::string LoopFileIn(std::string_view text) {
  LineReader lines(text);
  for (std::string line; lines.Next(line);) {
    if (line.starts_with(Keyword)) return line.substr(Keyword.size());
  }
  return {};
}

}  // namespace torvane
