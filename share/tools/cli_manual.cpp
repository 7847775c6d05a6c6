#include <CLI/CLI.hpp>
#include <map>

#include "cli_texts.h"

namespace torvane::tools {
namespace {

// Options that so many commands share are described once.
constexpr std::size_t Several = 3;

std::string RoffEscaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else {
      if (c == '-') escaped += '\\';
      escaped += c;
    }
  }
  const bool request = escaped.starts_with('.') || escaped.starts_with('\'');
  return request ? "\\&" + escaped : escaped;
}

std::string Joined(const std::vector<std::string>& parts, const std::string& between) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : between) + part;
  return text;
}

std::string Bold(const std::string& text) {
  return "\\fB" + RoffEscaped(text) + "\\fR";
}

// Names and value of an option, as they are typed; of a positional argument its name.
std::string Heading(const CLI::Option& option) {
  if (IsPositional(option)) return "\\fI" + RoffEscaped(option.get_name(true)) + "\\fR";
  std::vector<std::string> names;
  for (const std::string& name : Names(option)) names.push_back(Bold(name));
  const std::string value = ValueName(option);
  return Joined(names, ", ") + (value.empty() ? "" : " \\fI" + RoffEscaped(value) + "\\fR");
}

std::string Entry(const CLI::Option& option) {
  return ".TP\n" + Heading(option) + "\n" + RoffEscaped(option.get_description()) + ".\n";
}

// The command with all that it cannot do without.
std::string Usage(const CLI::App& command) {
  std::string text = Bold(command.get_name());
  for (const CLI::Option* option : command.get_options()) {
    if (IsPositional(*option)) text += " " + Heading(*option);
  }
  for (const CLI::Option* option : command.get_options()) {
    if (!IsPositional(*option) && option->get_required()) text += " " + Heading(*option);
  }
  return text;
}

}  // namespace

std::string ManualOptions(const CLI::App& app) {
  std::vector<std::string> entries;  // in the order of their first appearance
  std::map<std::string, std::vector<std::string>> commandsOf;
  for (const CLI::App* command : Commands(app)) {
    for (const CLI::Option* option : command->get_options()) {
      std::vector<std::string>& commands = commandsOf[Entry(*option)];
      if (commands.empty()) entries.push_back(Entry(*option));
      commands.push_back(Bold(command->get_name()));
    }
  }
  std::string text;
  for (const CLI::App* command : Commands(app)) {
    text += ".SS " + Usage(*command) + "\n" + RoffEscaped(command->get_description()) + ".\n";
    for (const CLI::Option* option : command->get_options()) {
      if (commandsOf[Entry(*option)].size() < Several) text += Entry(*option);
    }
  }
  text += ".SS Of several commands\n";
  for (const std::string& entry : entries) {
    const std::vector<std::string>& commands = commandsOf[entry];
    if (commands.size() < Several) continue;
    const bool all = commands.size() == Commands(app).size();
    text += entry + (all ? "" : "Of " + Joined(commands, ", ") + ".\n");
  }
  text += ".SS Without a command\n";
  for (const CLI::Option* option : app.get_options()) text += Entry(*option);
  return text;
}

}  // namespace torvane::tools
