#include "cli/io/number_options.h"

#include <CLI/CLI.hpp>

#include "core/text.h"
#include "workbench/unknown_name.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

CLI::Option* AddValue(CLI::App& command, const std::string& option, const char* type,
                      const std::string& description,
                      const std::function<void(const std::string&)>& set) {
  return command.add_option_function<std::string>(option, set, description)->type_name(type);
}

}  // namespace

double ParseOption(const std::string& option, const std::string& text, NumberRange range) {
  const std::optional<double> number = ParseNumber(text);
  if (!number) throw UsageError(option + " needs a number, not \"" + text + "\"");
  if (range == NumberRange::Positive && !(*number > 0.0)) {
    throw UsageError(option + " must be above 0, not " + text);
  }
  if (range == NumberRange::NotNegative && !(*number >= 0.0)) {
    throw UsageError(option + " must not be negative, not " + text);
  }
  return *number;
}

CLI::Option* AddNumber(CLI::App& command, const std::string& option, double& value,
                       NumberRange range, const std::string& description) {
  return AddValue(command, option, "NUMBER", description, [=, &value](const std::string& text) {
    value = ParseOption(option, text, range);
  });
}

CLI::Option* AddNumber(CLI::App& command, const std::string& option, std::optional<double>& value,
                       NumberRange range, const std::string& description) {
  return AddValue(command, option, "NUMBER", description, [=, &value](const std::string& text) {
    value = ParseOption(option, text, range);
  });
}

CLI::Option* AddChoice(CLI::App& command, const std::string& option, std::optional<int>& value,
                       std::vector<std::string> names, const std::string& description) {
  std::string type;
  for (const std::string& name : names) type += (type.empty() ? "" : "|") + name;
  const auto set = [option, &value, names = std::move(names)](const std::string& text) {
    const int index = IndexOfName(Lower(text), names);
    if (index < 0) throw UnknownName(option, text, names);
    value = index;
  };
  return command.add_option_function<std::string>(option, set, description)->type_name(type);
}

CLI::Option* AddInteger(CLI::App& command, const std::string& option, std::optional<int>& value,
                        const std::string& description) {
  return AddValue(command, option, "INTEGER", description, [=, &value](const std::string& text) {
    value = ParseInteger(text);
    if (!value) throw UsageError(option + " needs a whole number, not \"" + text + "\"");
  });
}

}  // namespace torvane::cli
