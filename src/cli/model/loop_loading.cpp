#include "cli/model/loop_loading.h"

#include "cli/command_error.h"
#include "core/files/loop_record.h"
#include "core/files/model_file.h"
#include "loops/loop_file.h"
#include "models/catalogue.h"

namespace torvane::cli {
namespace {

enum class Doubts { Passed, Printed };

loops::LoopFile Read(const std::string& path, Console& console, Doubts doubts) {
  loops::LoopFile file = loops::ReadLoopFile(path, ModelNames());
  if (!file.Fault.empty()) throw FileError(file.Fault);
  for (const loops::Problem& problem : file.Reading.Problems) {
    if (problem.Warning && doubts == Doubts::Passed) continue;
    console.Report(path + ":" + std::to_string(problem.Where.Line) + ":" +
                       std::to_string(problem.Where.Column),
                   (problem.Warning ? "warning: " : "") + problem.Text);
    console.Print(loops::MarkedLine(file.Text, problem.Where));
  }
  if (!file.Reading.Plan) throw FileError("");
  return file;
}

}  // namespace

bool NamesLoop(const std::string& text) {
  return text.ends_with(LoopEnding);
}

std::unique_ptr<ZelModel> OpenLoop(const std::string& path, Console& console) {
  return loops::MakeLoop(Read(path, console, Doubts::Passed));
}

void CheckLoop(const std::string& path, Console& console) {
  Read(path, console, Doubts::Printed);
}

void AddLoopOf(const std::string& modelFile, const std::string& text, Catalogue& catalogue,
               Console& console) {
  const std::string name = ModelNameIn(text);
  const std::string wasAt = LoopFileIn(text);
  if (wasAt.empty()) return;
  if (FindModel(name) >= 0) {
    throw FileError(modelFile + " is for a loop of the name \"" + name +
                    "\", which a built-in model has; give the loop one of its own");
  }
  if (catalogue.Find(name)) return;
  const std::string path = loops::FindLoopFile(wasAt, modelFile);
  if (path.empty()) {
    throw FileError(modelFile + " is for the loop \"" + name + "\" in " + wasAt +
                    ", and there is no such file, nor one of that name beside the model file");
  }
  loops::LoopFile file = Read(path, console, Doubts::Passed);
  const std::string& held = file.Reading.Plan->Name;
  if (held != name) {
    throw FileError(modelFile + " is for the loop \"" + name + "\", but " + path + " holds \"" +
                    held + "\"");
  }
  catalogue.Add(
      {name, path, [file](const std::string& /*name*/) { return loops::MakeLoop(file); }});
}

}  // namespace torvane::cli
