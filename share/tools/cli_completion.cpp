#include <CLI/CLI.hpp>
#include <map>

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

// What a value is, by the name that stands for it: "file", what "torvane-cli complete" knows, the
// choices with "|" between them, or "none" of these.
std::string KindOf(const std::string& value) {
  static const std::map<std::string, std::string> kinds{{"SIGNAL", "signal"},
                                                        {"A,B,...", "signals"},
                                                        {"IN:OUT", "signal-pair"},
                                                        {"SIGNAL=NUMBER", "signal-number"},
                                                        {"NAME=VALUE", "constant"},
                                                        {"KEY=VALUE|FILE", "wave"},
                                                        {"NAME=FROM:TO:COUNT[:log]", "range"},
                                                        {"NAME=FROM:TO[:log]", "range"},
                                                        {"MEASURE", "measure"},
                                                        {"MEASURE<NUMBER", "requirement"},
                                                        {"X,Y", "axes"},
                                                        {"PAIR", "pair"}};
  const auto known = kinds.find(value);
  if (known != kinds.end()) return known->second;
  if (value.starts_with("FILE")) return "file";
  return value.find('|') == std::string::npos ? "none" : value;
}

// How zsh completes it. Behind a blank the function gets no argument but its own.
std::string Action(const std::string& value) {
  const std::string kind = KindOf(value);
  if (kind == "file") return "_files";
  if (kind == "none") return " ";
  if (kind.find('|') == std::string::npos) return " _torvane_values " + kind;
  std::string choices = kind;
  for (char& c : choices) c = c == '|' ? ' ' : c;
  return "(" + choices + ")";
}

// What stands without an option: "model", "study", a table or a model, or "file".
std::string ArgumentOf(const CLI::App& command) {
  for (const CLI::Option* option : command.get_options()) {
    if (!IsPositional(*option)) continue;
    const std::string name = option->get_name(true);
    if (name == "MODEL") return "model";
    return name.ends_with("MODEL") ? "study" : "file";
  }
  return "none";
}

// The options that have a value, as OPTION=KIND.
std::string Values(const CLI::App& command) {
  std::string values;
  for (const CLI::Option* option : command.get_options()) {
    const std::string value = ValueName(*option);
    if (value.empty()) continue;
    for (const std::string& name : Names(*option)) values += name + "=" + KindOf(value) + " ";
  }
  return values;
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
    for (const CLI::Option* option : command->get_options()) {
      for (const std::string& name : Names(*option)) options += name + " ";
    }
    text += "    " + command->get_name() + ") options=" + Quoted(options) +
            " values=" + Quoted(Values(*command)) + " argument=" + ArgumentOf(*command) + " ;;\n";
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
    text += "    " + command->get_name() + ")\n      values=" + Quoted(Values(*command)) +
            "\n      _arguments";
    for (const CLI::Option* option : command->get_options()) {
      if (IsPositional(*option)) {
        const std::string name = option->get_name(true);
        const bool model = name.ends_with("MODEL");
        const std::string action = model && name != "MODEL"
                                       ? ":_torvane_studies"
                                       : (model ? ":_torvane_models" : ":_files");
        text += " \\\n        " +
                Quoted((option->get_expected_max() > 1 ? "*:" : ":") + Escaped(name) + action);
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
