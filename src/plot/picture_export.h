#pragma once

#include <string>

namespace torvane {

class FrequencyAnalyser;
class ZelScope;
struct ScopeScreen;

/// Writes what the scope's window would show with that screen to a picture file, whose kind follows
/// from the file name's ending: png, svg or pdf. False, with a one-line reason, when it cannot.
/// Makes an application object without a display when the program has none.
bool ExportScopePicture(const ZelScope& scope, const ScopeScreen& screen, const std::string& file,
                        std::string& error);

/// The same of an analyser's gain and phase.
bool ExportResponsePicture(FrequencyAnalyser& analyser, const std::string& file,
                           std::string& error);

}  // namespace torvane
