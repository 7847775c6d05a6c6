#pragma once

#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// What the desktop program is asked to do.
struct CommandLine {
  enum class Action { Run, SpeedTest, Help, Version };
  Action What = Action::Run;
  std::string Model;          ///< name in the catalogue; empty for the first one
  double SpeedSeconds = 0.0;  ///< wall time of the speed test
  std::string File;           ///< model file to open; empty for none
};

/// Reads the arguments after the program's name. On a wrong one gives nothing and a one-line
/// reason.
std::optional<CommandLine> ReadCommandLine(const std::vector<std::string>& arguments,
                                           std::string& error);

/// Text of --help.
std::string HelpText();

}  // namespace torvane
