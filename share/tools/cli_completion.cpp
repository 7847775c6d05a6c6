#include <CLI/CLI.hpp>

#include "cli_texts.h"

namespace torvane::tools {
namespace {

// Between single quotes, in which a shell leaves all but the quote alone.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// What divides an option's description in zsh stands there with a backslash.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == ':' || c == '[' || c == ']' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

// How zsh completes a value, by the name that stands for it.
std::string Action(const std::string& value) {
  if (value.starts_with("FILE")) return "_files";
  if (value.find('|') == std::string::npos) return " ";
  std::string choices = value;
  for (char& c : choices) c = c == '|' ? ' ' : c;
  return "(" + choices + ")";
}

// An option under one of its names, as _arguments takes it.
std::string ZshOption(const CLI::Option& option, const std::string& name) {
  const std::string value = ValueName(option);
  const std::string repeat = option.get_expected_max() > 1 ? "*" : "";
  const std::string equals = !value.empty() && name.starts_with("--") ? "=" : "";
  return repeat + name + equals + "[" + Escaped(option.get_description()) + "]" +
         (value.empty() ? "" : ":" + Escaped(value) + ":" + Action(value));
}

}  // namespace

std::string CommandWords(const CLI::App& app) {
  std::string words;
  for (const CLI::App* command : Commands(app)) {
    words += (words.empty() ? "" : " ") + command->get_name();
  }
  return words;
}

std::string BashCommands(const CLI::App& app) {
  std::string text;
  for (const CLI::App* command : Commands(app)) {
    std::string options;
    std::string values;
    for (const CLI::Option* option : command->get_options()) {
      const std::string value = ValueName(*option);
      for (const std::string& name : Names(*option)) {
        options += name + " ";
        if (!value.empty()) values += name + "=" + value + " ";
      }
    }
    text += "    " + command->get_name() + ") options=" + Quoted(options) +
            " values=" + Quoted(values) + " ;;\n";
  }
  return text;
}

std::string ZshDescriptions(const CLI::App& app) {
  std::string text;
  for (const CLI::App* command : Commands(app)) {
    text += "    " + Quoted(command->get_name() + ":" + Escaped(command->get_description())) + "\n";
  }
  return text;
}

std::string ZshCommands(const CLI::App& app) {
  std::string text;
  for (const CLI::App* command : Commands(app)) {
    text += "    " + command->get_name() + ")\n      _arguments";
    for (const CLI::Option* option : command->get_options()) {
      if (IsPositional(*option)) {
        const std::string name = option->get_name(true);
        const char* action = name == "MODEL" ? ":_torvane_models" : ":_files";
        text += " \\\n        " + Quoted(":" + name + action);
      }
      for (const std::string& name : Names(*option)) {
        text += " \\\n        " + Quoted(ZshOption(*option, name));
      }
    }
    text += "\n      ;;\n";
  }
  return text;
}

}  // namespace torvane::tools
