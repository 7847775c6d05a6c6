#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace torvane::cli {

/// What an option accepts; every number must be finite, whatever it accepts.
enum class NumberRange { Any, NotNegative, Positive };

/// The number that the text stands for; anything else is wrong usage of the named option.
double ParseOption(const std::string& option, const std::string& text, NumberRange range);

/// Options whose value is a number. The variable keeps what it holds when the option is not given.
CLI::Option* AddNumber(CLI::App& command, const std::string& option, double& value,
                       NumberRange range, const std::string& description);
CLI::Option* AddNumber(CLI::App& command, const std::string& option, std::optional<double>& value,
                       NumberRange range, const std::string& description);
/// One of some names, without regard to case: its position. Any other is wrong usage, whatever else
/// is on the command line.
CLI::Option* AddChoice(CLI::App& command, const std::string& option, std::optional<int>& value,
                       std::vector<std::string> names, const std::string& description);
CLI::Option* AddInteger(CLI::App& command, const std::string& option, std::optional<int>& value,
                        const std::string& description);

}  // namespace torvane::cli
