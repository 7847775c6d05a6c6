#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace torvane::tools {

std::vector<const CLI::App*> Commands(const CLI::App& app);

/// As they are typed: -h, --help.
std::vector<std::string> Names(const CLI::Option& option);

bool IsPositional(const CLI::Option& option);

/// What stands for the option's value in the help; empty for a flag.
std::string ValueName(const CLI::Option& option);

/// The options of every command, as sections of a manual page.
std::string ManualOptions(const CLI::App& app);

/// The names of the commands, as words of a shell.
std::string CommandWords(const CLI::App& app);

/// A line a command of a `case` in bash, which sets `options` and, as OPTION=KIND, `values`.
std::string BashCommands(const CLI::App& app);

/// The commands for `_describe` and for `_arguments` of zsh.
std::string ZshDescriptions(const CLI::App& app);
std::string ZshCommands(const CLI::App& app);

}  // namespace torvane::tools
