#pragma once

namespace CLI {
class App;
}

namespace torvane::cli {

class Console;

/// Describes torvane-cli to the parser: every command with its options.
void AddCommands(CLI::App& app, Console& console);

/// torvane-cli: reads the command line, carries the command out and gives the exit code.
int RunProgram(int argc, const char* const* argv);

}  // namespace torvane::cli
