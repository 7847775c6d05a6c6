#include "command_line.h"

#include <filesystem>

#include "core/text.h"
#include "models/catalogue.h"

namespace torvane {

namespace {

// Of a name or an index; empty when there is none.
std::string ModelName(const std::string& text) {
  const Catalogue catalogue;
  if (catalogue.Find(text)) return text;
  const std::optional<int> index = ParseInteger(text);
  const auto& entries = catalogue.Entries();
  if (!index || *index < 0 || *index >= static_cast<int>(entries.size())) return {};
  return entries[static_cast<std::size_t>(*index)].Name;
}

// Anything to read that exists, or the name of a model file or a loop's, whose absence is reported
// when it is opened.
bool IsFile(const std::string& text) {
  std::error_code ignored;
  const auto status = std::filesystem::status(text, ignored);
  return (std::filesystem::exists(status) && !std::filesystem::is_directory(status)) ||
         text.ends_with(".tvf") || text.ends_with(".TVF") || text.ends_with(".mo");
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(const std::vector<std::string>& arguments,
                                           std::string& error) {
  CommandLine command;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h") {
      command.What = CommandLine::Action::Help;
      return command;
    }
    if (argument == "--version") {
      command.What = CommandLine::Action::Version;
      return command;
    }
    if (argument == "--speed-test") {
      const std::optional<double> seconds =
          i + 1 < arguments.size() ? ParseNumber(arguments[++i]) : std::nullopt;
      if (!seconds || *seconds <= 0.0 || *seconds > 86400.0) {
        error = "--speed-test needs a number of seconds, above 0 and up to 86400";
        return {};
      }
      command.What = CommandLine::Action::SpeedTest;
      command.SpeedSeconds = *seconds;
    } else if (argument == "-session" && i + 1 < arguments.size()) {
      ++i;  // how a session manager starts the program again; the toolkit takes it
    } else if (argument.starts_with("-")) {
      error = "Unknown option " + argument + " (see --help)";
      return {};
    } else if (!command.Model.empty() || !command.File.empty()) {
      error = "One model or file at most: " + argument;
      return {};
    } else if (const std::string model = ModelName(argument); !model.empty()) {
      command.Model = model;
    } else if (IsFile(argument)) {
      command.File = argument;
    } else if (const auto meant = Catalogue().NamesFrom(argument); meant.size() == 1) {
      command.Model = meant.front();
    } else {
      error = "There is no model or file \"" + argument + "\" (see --help)";
      return {};
    }
  }
  return command;
}

std::string HelpText() {
  std::string text =
      "Usage: torvane [MODEL|FILE.tvf|LOOP.mo] [--speed-test SECONDS]\n"
      "Simulator of feedback control systems.\n\n"
      "  MODEL                 model to start with, by name, its beginning or number\n"
      "  FILE.tvf              model file to open\n"
      "  LOOP.mo               loop of your own to open\n"
      "  --speed-test SECONDS  press Run, print the speed after that time, and end\n"
      "  --help                print this text\n"
      "  --version             print the version\n\n"
      "Models:\n";
  int index = 0;
  for (const std::string& name : Catalogue().Names()) {
    text += (index < 10 ? "  " : " ") + std::to_string(index) + "  " + name + "\n";
    ++index;
  }
  return text;
}

}  // namespace torvane
