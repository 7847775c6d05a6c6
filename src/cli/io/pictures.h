#pragma once

#include <string>

#include "instruments/analyser/analyser.h"
#include "instruments/recorded_run.h"
#include "instruments/scope/scope.h"
#include "study/study_pictures.h"

namespace torvane::cli {

/// Refuses a picture file that cannot be made, before anything is run for it: one whose name does
/// not end in png, svg or pdf, or any at all when the program was built without pictures. An empty
/// name asks for no picture.
void CheckPictureFile(const std::string& file);

/// Writes what the scope's window would show with that screen.
void WritePicture(const ZelScope& scope, const ScopeScreen& screen, const std::string& file);
/// The same of an analyser's gain and phase.
void WritePicture(FrequencyAnalyser& analyser, const std::string& file);

/// The signals of a run on time.
void WritePicture(RecordedRun run, const std::string& file);

/// The responses of a study's runs, or a map of them.
void WritePicture(StudyResponses responses, const std::string& file);
void WritePicture(StudyMap map, const std::string& file);

}  // namespace torvane::cli
