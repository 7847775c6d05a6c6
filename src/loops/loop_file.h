#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/files/input_file.h"
#include "core/model.h"
#include "loops/own_loops.h"

namespace torvane::loops {

/// A file with a loop.
struct LoopFile {
  std::string Path;  ///< absolute
  std::string Text;
  std::string Fault;  ///< why the file could not be read; empty when it was
  LoopReading Reading;
};

/// Reads the file and the loop in it, which cannot have the name of a built-in model. `patience`:
/// milliseconds that a pipe may stay silent.
LoopFile ReadLoopFile(const std::string& path, const std::vector<std::string>& builtIns,
                      int patience = InputFile::WaitForEver);

/// As ReadLoopFile, of a text that is not in the file yet.
LoopFile ReadLoopText(const std::string& path, std::string text,
                      const std::vector<std::string>& builtIns);

/// Builds the model of a file that has been read without an error; the model knows the file.
std::unique_ptr<ZelModel> MakeLoop(const LoopFile& file);

/// The line of the text in which the problem is and, in a second one, a caret below its place.
/// Control characters are shown as blanks.
std::string MarkedLine(const std::string& text, Place where);

/// A problem's place as compilers tell it, "PATH:LINE:COLUMN".
std::string PlaceText(const std::string& path, Place where);

/// The name that the text gives its loop, whatever else is wrong with it; empty when it gives none.
std::string LoopNameIn(std::string_view text);

/// The loop that a model file is for.
struct WantedLoop {
  std::string WasAt;  ///< where its file was; empty when the model file is for none
  std::string Name;
  LoopFile File;  ///< without a path when it is not found
  /// Why that file cannot be taken, but for what is wrong with the loop's text.
  std::string Fault;
};

/// Takes the loop of a model file from `at`, else from where it was or from beside the model file.
WantedLoop FindWantedLoop(const std::string& modelFile, std::string_view text,
                          const std::vector<std::string>& builtIns, const std::string& at = {});

}  // namespace torvane::loops
