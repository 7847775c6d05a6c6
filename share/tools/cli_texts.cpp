// Build-time tool: cli_texts TEMPLATE OUT VERSION copies a text and fills in what torvane-cli knows
// about itself, so that manual page and shell completion always have every command and option.

#include "cli_texts.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "cli/io/console.h"
#include "cli/program.h"

namespace torvane::tools {

std::vector<const CLI::App*> Commands(const CLI::App& app) {
  // One without a group is for the completion itself.
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<std::string> Names(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool IsPositional(const CLI::Option& option) {
  return Names(option).empty();
}

std::string ValueName(const CLI::Option& option) {
  return option.get_items_expected_max() > 0 ? option.get_type_name() : "";
}

}  // namespace torvane::tools

namespace {

void Replace(std::string& text, const std::string& mark, const std::string& by) {
  for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size())) {
    text.replace(at, mark.size(), by);
  }
}

std::string Filled(std::string text, const std::string& version) {
  CLI::App app;
  torvane::cli::Console console;
  torvane::cli::AddCommands(app, console);
  Replace(text, "@VERSION@", version);
  Replace(text, "@MANUAL_OPTIONS@\n", torvane::tools::ManualOptions(app));
  Replace(text, "@COMMAND_WORDS@", torvane::tools::CommandWords(app));
  Replace(text, "@BASH_COMMANDS@\n", torvane::tools::BashCommands(app));
  Replace(text, "@ZSH_DESCRIPTIONS@\n", torvane::tools::ZshDescriptions(app));
  Replace(text, "@ZSH_COMMANDS@\n", torvane::tools::ZshCommands(app));
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: cli_texts TEMPLATE OUT VERSION\n", stderr);
    return 2;
  }
  std::ostringstream text;
  text << std::ifstream(argv[1]).rdbuf();
  std::ofstream out(argv[2]);
  out << Filled(text.str(), argv[3]);
  out.close();
  if (text.str().empty() || !out) {
    std::fprintf(stderr, "cli_texts: cannot make %s of %s\n", argv[2], argv[1]);
    return 1;
  }
  return 0;
}
