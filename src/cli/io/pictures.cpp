#include "cli/io/pictures.h"

#include <string_view>

#include "workbench/unknown_name.h"
#include "workbench/work_fault.h"

#ifdef TORVANE_PICTURES
#include "plot/picture_export.h"
#include "plot/run/run_picture.h"
#include "plot/study/study_picture.h"
#endif

namespace torvane::cli {

void CheckPictureFile(const std::string& file) {
  if (file.empty()) return;
#ifdef TORVANE_PICTURES
  const std::string name = Lower(file);
  for (const std::string_view ending : {".png", ".svg", ".pdf"}) {
    if (name.ends_with(ending)) return;
  }
  throw UsageError("--picture needs a name that ends in .png, .svg or .pdf, not \"" + file + "\"");
#else
  throw UsageError("--picture: this torvane-cli was built without pictures");
#endif
}

#ifdef TORVANE_PICTURES
static void WritePicture(const Picture& picture, const std::string& file) {
  const std::string fault = ExportPicture(picture, file, Readerless::Wait);
  if (!fault.empty()) throw FileError(fault);
}

void WritePicture(const ZelScope& scope, const ScopeScreen& screen, const std::string& file) {
  WritePicture(ScopePicture(scope, screen, nullptr), file);
}

void WritePicture(FrequencyAnalyser& analyser, const std::string& file) {
  WritePicture(ResponsePicture(analyser), file);
}

void WritePicture(RecordedRun run, const std::string& file) {
  WritePicture(RunPicture(std::move(run)), file);
}

void WritePicture(StudyResponses responses, const std::string& file) {
  WritePicture(StudyResponsesPicture(std::move(responses)), file);
}

void WritePicture(StudyMap map, const std::string& file) {
  WritePicture(StudyMapPicture(std::move(map)), file);
}
#else
void WritePicture(const ZelScope&, const ScopeScreen&, const std::string& file) {
  CheckPictureFile(file);
}

void WritePicture(FrequencyAnalyser&, const std::string& file) {
  CheckPictureFile(file);
}

void WritePicture(RecordedRun, const std::string& file) {
  CheckPictureFile(file);
}

void WritePicture(StudyResponses, const std::string& file) {
  CheckPictureFile(file);
}

void WritePicture(StudyMap, const std::string& file) {
  CheckPictureFile(file);
}
#endif

}  // namespace torvane::cli
