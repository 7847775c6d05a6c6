#include "cli/program.h"

#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/exit_code.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "core/version.h"
#include "study/study_fault.h"
#include "workbench/model/loop_loading.h"
#include "workbench/model/settings.h"
#include "workbench/unknown_name.h"

namespace torvane::cli {
namespace {

constexpr const char* Footer =
    "Exit codes: 0 done; 1 the run was stopped by an error; 2 wrong usage;\n"
    "3 a file could not be read or written. Messages go to standard error.";

}  // namespace

namespace {

// A user's loop, or what a generator plays, must not go under a result.
void KeepWhatIsRead(const CLI::App& command) {
  const auto given = [&](const char* name) {
    const CLI::Option* const option = command.get_option_no_throw(name);
    return option ? option->results() : std::vector<std::string>();
  };
  for (const char* const name : {"--out", "--picture", "--trace", "OUT"}) {
    for (const std::string& output : given(name)) {
      if (NamesLoop(output)) {
        throw UsageError("\"" + output + "\" is for a loop's text, and no result is written there");
      }
      for (const std::string& wave : given("--wave")) {
        const std::string played = PlayedFile(wave);
        if (played.empty() || !SameFile(output, played)) continue;
        throw UsageError("\"" + played + "\" is read; it cannot be written as well");
      }
    }
  }
}

}  // namespace

void AddCommands(CLI::App& app, Console& console) {
  app.set_version_flag("--version", std::string("torvane-cli ") + Version(),
                       "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.require_subcommand(1);
  app.footer(Footer);
  AddModelsCommand(app);
  AddConstantsCommand(app, console);
  AddSignalsCommand(app, console);
  AddPairsCommand(app, console);
  AddRunCommand(app, console);
  AddDrawCommand(app);
  AddScopeCommand(app, console);
  AddSpeedCommand(app, console);
  AddBodeCommand(app, console);
  AddSweepCommand(app, console);
  AddMeterCommand(app, console);
  AddMeasureCommand(app, console);
  AddStudyCommand(app, console);
  AddTuneCommand(app, console);
  AddLinearizeCommand(app, console);
  AddLocusCommand(app, console);
  AddDiagramCommand(app, console);
  AddCheckCommand(app, console);
  AddConvertCommand(app, console);
  AddCompleteCommand(app, console);
  app.parse_complete_callback([&app] {
    for (const CLI::App* command : app.get_subcommands()) KeepWhatIsRead(*command);
  });
}

namespace {

std::vector<std::string> LongOptions(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// What makes an argument that is one too many a likely slip; empty without an idea.
std::string SlipBehind(const CLI::App& command, const std::string& argument) {
  if (command.get_option_no_throw("--set") && argument.find('=') != std::string::npos) {
    return "; a constant is set by --set " + argument;
  }
  for (const CLI::Option* option : command.get_options()) {
    if (option->count() == 0) continue;
    const std::string last = option->results().back();
    const std::string type = option->get_type_name();
    if (type == "NAME=VALUE" && last.find('=') == std::string::npos) {
      return "; " + option->get_name() + " needs NAME=VALUE, not \"" + last + "\"";
    }
    if (last.ends_with(',')) return "; what " + option->get_name() + " lists stands without blanks";
  }
  return "";
}

// What is left on the command line explains a failure better than what is missing because of it.
WorkFault ExplainLeftOver(const CLI::App& app, const std::string& leftOver) {
  const auto commands = app.get_subcommands();
  const CLI::App& command = commands.empty() ? app : *commands.front();
  if (leftOver.starts_with("-")) {
    return UnknownName("option", leftOver.substr(0, leftOver.find('=')), LongOptions(command));
  }
  if (!commands.empty()) {
    return UsageError("unexpected argument \"" + leftOver + "\"" + SlipBehind(command, leftOver));
  }
  std::vector<std::string> names;
  for (const CLI::App* known : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(known->get_name());
  }
  return UnknownName("command", leftOver, names);
}

// An option with too many values, or with none.
std::string ExplainMismatch(const CLI::App& app, const std::string& said) {
  const auto commands = app.get_subcommands();
  const std::string name = said.substr(0, said.find(':'));
  const CLI::Option* const option =
      commands.empty() ? nullptr : commands.front()->get_option_no_throw(name);
  if (!option) return said;
  if (option->results().size() > 1) return name + " is given more than once";
  return name + " needs a value, " + option->get_type_name();
}

WorkFault ExplainParseError(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> leftOver = app.remaining(true);
  if (!leftOver.empty()) return ExplainLeftOver(app, leftOver.front());
  if (app.get_subcommands().empty()) {
    return UsageError("a command is needed; --help lists them");
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
    return UsageError(ExplainMismatch(app, error.what()));
  }
  return UsageError(error.what());
}

// Help and version, which the parser hands over as errors of their own.
void PrintAnswer(const CLI::App& app, const CLI::ParseError& request) {
  std::ostringstream text;
  app.exit(request, text, text);
  ResultFile output("");
  output.Write(text.str());
  output.Close();
}

void ParseAndRun(CLI::App& app, int argc, const char* const* argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {
    PrintAnswer(app, request);
  } catch (const CLI::ParseError& error) {
    throw ExplainParseError(app, error);
  }
}

ExitCode CodeOf(const StudyFault& fault) {
  switch (fault.What()) {
    case StudyFault::Kind::Asked:
      return ExitCode::Usage;
    case StudyFault::Kind::File:
      return ExitCode::File;
    default:
      return ExitCode::Stopped;
  }
}

}  // namespace

int RunProgram(int argc, const char* const* argv) {
  Console console;
  try {
    CLI::App app("Simulator of feedback control systems", "torvane-cli");
    AddCommands(app, console);
    ParseAndRun(app, argc, argv);
    return static_cast<int>(console.Ended() ? ExitCode::Stopped : ExitCode::Done);
  } catch (const WorkFault& error) {
    if (*error.what()) console.Report("Error", error.what());
    return static_cast<int>(CodeOf(error));
  } catch (const StudyFault& fault) {
    console.Report("Error", fault.what());
    return static_cast<int>(CodeOf(fault));
  } catch (const std::exception& error) {
    console.Report("Error", error.what());
    return static_cast<int>(ExitCode::Stopped);
  }
}

}  // namespace torvane::cli
