#include "loops/loop_file.h"

#include <filesystem>
#include <utility>

#include "core/files/loop_record.h"
#include "core/files/model_file.h"
#include "core/files/text_file.h"
#include "core/names.h"
#include "loops/own_loop.h"
#include "loops/parser.h"

namespace torvane::loops {

namespace {

constexpr std::size_t MostRead = std::size_t{1} << 20U;

bool IsThere(const std::filesystem::path& path) {
  std::error_code failure;
  return std::filesystem::is_regular_file(path, failure);
}

std::string Absolute(const std::string& path) {
  std::error_code failure;
  return std::filesystem::absolute(path, failure).lexically_normal().string();
}

// Where it was, then beside the model file; empty when it is at neither.
std::string Find(const std::string& wasAt, const std::string& modelFile) {
  if (IsThere(wasAt)) return wasAt;
  const std::filesystem::path beside =
      std::filesystem::path(modelFile).parent_path() / std::filesystem::path(wasAt).filename();
  return IsThere(beside) ? beside.string() : std::string();
}

}  // namespace

LoopFile ReadLoopFile(const std::string& path, const std::vector<std::string>& builtIns,
                      int patience) {
  LoopFile file;
  file.Path = Absolute(path);
  file.Fault = ReadTextFile(path, MostRead, file.Text, patience);
  if (file.Fault.empty()) file.Reading = ReadLoop(file.Text, builtIns);
  return file;
}

LoopFile ReadLoopText(const std::string& path, std::string text,
                      const std::vector<std::string>& builtIns) {
  LoopFile file;
  file.Path = Absolute(path);
  file.Text = std::move(text);
  file.Reading = ReadLoop(file.Text, builtIns);
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

std::string PlaceText(const std::string& path, Place where) {
  return path + ":" + std::to_string(where.Line) + ":" + std::to_string(where.Column);
}

std::string LoopNameIn(std::string_view text) {
  if (text.size() > MaxTextSize) return {};
  ProblemList problems;
  return Parse(text, problems).Name;
}

WantedLoop FindWantedLoop(const std::string& modelFile, std::string_view text,
                          const std::vector<std::string>& builtIns, const std::string& at) {
  WantedLoop wanted;
  wanted.WasAt = LoopFileIn(text);
  if (wanted.WasAt.empty()) return wanted;
  wanted.Name = ModelNameIn(text);
  if (IndexOfName(wanted.Name, builtIns) >= 0) {
    wanted.Fault = modelFile + " is for a loop of the name \"" + wanted.Name +
                   "\", which a built-in model has; give the loop one of its own";
    return wanted;
  }
  const std::string isFor = modelFile + " is for the loop \"" + wanted.Name + "\"";
  const std::string path = at.empty() ? Find(wanted.WasAt, modelFile) : at;
  if (path.empty()) {
    wanted.Fault = isFor + " in " + wanted.WasAt +
                   ", and there is no such file, nor one of that name beside the model file";
    return wanted;
  }
  wanted.File = ReadLoopFile(path, builtIns);
  const auto& plan = wanted.File.Reading.Plan;
  wanted.Fault = wanted.File.Fault;
  if (plan && plan->Name != wanted.Name) {
    wanted.Fault = isFor + ", but " + path + " holds \"" + plan->Name + "\"";
  }
  return wanted;
}

}  // namespace torvane::loops
