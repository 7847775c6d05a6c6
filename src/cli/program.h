#pragma once

namespace torvane::cli {

/// torvane-cli: reads the command line, carries the command out and gives the exit code.
int RunProgram(int argc, const char* const* argv);

}  // namespace torvane::cli
