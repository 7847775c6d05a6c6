#include "cli/model/loop_loading.h"

#include <utility>

#include "cli/command_error.h"
#include "core/files/loop_record.h"
#include "loops/loop_file.h"
#include "models/catalogue.h"

namespace torvane::cli {
namespace {

enum class Doubts { Passed, Printed };

// Prints what is wrong with the loop's text, which ends the command when it is no doubt.
void Tell(const std::string& path, const loops::LoopFile& file, Console& console, Doubts doubts) {
  if (!file.Fault.empty()) throw FileError(file.Fault);
  for (const loops::Problem& problem : file.Reading.Problems) {
    if (problem.Warning && doubts == Doubts::Passed) continue;
    console.Report(loops::PlaceText(path, problem.Where),
                   (problem.Warning ? "warning: " : "") + problem.Text);
    console.Print(loops::MarkedLine(file.Text, problem.Where));
  }
  if (!file.Reading.Plan) throw FileError("");
}

loops::LoopFile Read(const std::string& path, Console& console, Doubts doubts) {
  loops::LoopFile file = loops::ReadLoopFile(path, ModelNames());
  Tell(path, file, console, doubts);
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
  loops::WantedLoop wanted = loops::FindWantedLoop(modelFile, text, ModelNames());
  if (wanted.WasAt.empty()) return;
  if (!wanted.Fault.empty()) throw FileError(wanted.Fault);
  const std::string path = wanted.File.Path;
  Tell(path, wanted.File, console, Doubts::Passed);
  catalogue.Add({wanted.Name, path, [file = std::move(wanted.File)](const std::string& /*name*/) {
                   return loops::MakeLoop(file);
                 }});
}

}  // namespace torvane::cli
