#pragma once

#include <memory>
#include <string>

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

/// Reads the file and the loop in it, which cannot have the name of a built-in model.
LoopFile ReadLoopFile(const std::string& path, const std::vector<std::string>& builtIns);

/// Builds the model of a file that has been read without an error; the model knows the file.
std::unique_ptr<ZelModel> MakeLoop(const LoopFile& file);

/// The line of the text in which the problem is and, in a second one, a caret below its place.
/// Control characters are shown as blanks.
std::string MarkedLine(const std::string& text, Place where);

/// Where to look for the loop of a model file: where it was, then beside the model file. Empty when
/// there is none.
std::string FindLoopFile(const std::string& wasAt, const std::string& modelFile);

}  // namespace torvane::loops
