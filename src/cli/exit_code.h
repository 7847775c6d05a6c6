#pragma once

#include "workbench/work_fault.h"

namespace torvane::cli {

/// How the program ends.
enum class ExitCode {
  Done = 0,
  Stopped = 1,  ///< the run was stopped by an error
  Usage = 2,    ///< wrong usage
  File = 3,     ///< a file could not be read or written
};

inline ExitCode CodeOf(const WorkFault& fault) {
  switch (fault.What()) {
    case WorkFault::Kind::Usage:
      return ExitCode::Usage;
    case WorkFault::Kind::File:
      return ExitCode::File;
    default:
      return ExitCode::Stopped;
  }
}

}  // namespace torvane::cli
