#include "loops/loop_file.h"

#include <filesystem>

#include "core/files/text_file.h"
#include "loops/own_loop.h"

namespace torvane::loops {

namespace {

constexpr std::size_t MostRead = std::size_t{1} << 20U;

bool IsThere(const std::filesystem::path& path) {
  std::error_code failure;
  return std::filesystem::is_regular_file(path, failure);
}

}  // namespace

LoopFile ReadLoopFile(const std::string& path, const std::vector<std::string>& builtIns) {
  LoopFile file;
  std::error_code failure;
  file.Path = std::filesystem::absolute(path, failure).lexically_normal().string();
  file.Fault = ReadTextFile(path, MostRead, file.Text);
  if (file.Fault.empty()) file.Reading = ReadLoop(file.Text, builtIns);
  return file;
}

std::unique_ptr<ZelModel> MakeLoop(const LoopFile& file) {
  return std::make_unique<OwnLoop>(file.Reading.Plan->Name, file.Reading.Plan, file.Path,
                                   file.Text);
}

std::string MarkedLine(const std::string& text, Place where) {
  std::size_t begin = 0;
  for (int line = 1; line < where.Line; ++line) {
    const std::size_t end = text.find('\n', begin);
    if (end == std::string::npos) return {};
    begin = end + 1;
  }
  std::string line = text.substr(begin, text.find('\n', begin) - begin);
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') c = ' ';
  }
  return line + "\n" + std::string(static_cast<std::size_t>(where.Column - 1), ' ') + "^";
}

std::string FindLoopFile(const std::string& wasAt, const std::string& modelFile) {
  if (wasAt.empty()) return {};
  if (IsThere(wasAt)) return wasAt;
  const std::filesystem::path beside =
      std::filesystem::path(modelFile).parent_path() / std::filesystem::path(wasAt).filename();
  return IsThere(beside) ? beside.string() : std::string();
}

}  // namespace torvane::loops
