#include "workbench/model/loop_loading.h"

#include <utility>

#include "core/files/loop_record.h"
#include "loops/loop_file.h"
#include "models/catalogue.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

enum class Doubts { Passed, Printed };

// Prints what is wrong with the loop's text, which ends the command when it is no doubt.
void Tell(const std::string& path, const loops::LoopFile& file, Supervisor& supervisor,
          Doubts doubts) {
  if (!file.Fault.empty()) throw FileError(file.Fault);
  for (const loops::Problem& problem : file.Reading.Problems) {
    if (problem.Warning && doubts == Doubts::Passed) continue;
    supervisor.Report(loops::PlaceText(path, problem.Where),
                      (problem.Warning ? "warning: " : "") + problem.Text);
    supervisor.Print(loops::MarkedLine(file.Text, problem.Where));
  }
  if (!file.Reading.Plan) throw FileError("");
}

loops::LoopFile Read(const std::string& path, Supervisor& supervisor, Doubts doubts) {
  loops::LoopFile file = loops::ReadLoopFile(path, ModelNames());
  Tell(path, file, supervisor, doubts);
  return file;
}

void Add(const std::string& name, loops::LoopFile loop, Catalogue& catalogue,
         Supervisor& supervisor) {
  const std::string path = loop.Path;
  Tell(path, loop, supervisor, Doubts::Passed);
  catalogue.Add({name, path, [file = std::move(loop)](const std::string& /*name*/) {
                   return loops::MakeLoop(file);
                 }});
}

}  // namespace

bool NamesLoop(const std::string& text) {
  return text.ends_with(LoopEnding);
}

std::unique_ptr<ZelModel> OpenLoop(const std::string& path, Supervisor& supervisor) {
  return loops::MakeLoop(Read(path, supervisor, Doubts::Passed));
}

void CheckLoop(const std::string& path, Supervisor& supervisor) {
  Read(path, supervisor, Doubts::Printed);
}

void AddLoopOf(const std::string& modelFile, const std::string& text, Catalogue& catalogue,
               Supervisor& supervisor) {
  loops::WantedLoop wanted = loops::FindWantedLoop(modelFile, text, ModelNames());
  if (wanted.WasAt.empty()) return;
  if (!wanted.Fault.empty()) throw FileError(wanted.Fault);
  Add(wanted.Name, std::move(wanted.File), catalogue, supervisor);
}

void AddLoop(const std::string& name, const std::string& path, const std::string& text,
             Catalogue& catalogue, Supervisor& supervisor) {
  Add(name, loops::ReadLoopText(path, text, ModelNames()), catalogue, supervisor);
}

}  // namespace torvane
