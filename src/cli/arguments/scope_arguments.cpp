#include "cli/arguments/scope_arguments.h"

#include <CLI/CLI.hpp>

#include "cli/io/number_options.h"

namespace torvane::cli {

void AddScopeSettings(CLI::App& command, ScopeSettings& settings) {
  AddNumber(command, "--time-base", settings.TimeBase, NumberRange::Positive,
            "Of the scope: seconds a division, of which a screen has ten");
  command.add_option("--show", settings.Show, "Of the scope: the signals that it shows")
      ->type_name("A,B,...");
  command.add_option("--trig-mode", settings.TrigMode, "Of the scope: Cont, Auto or Normal");
  command
      .add_option("--trig-source", settings.TrigSource, "Of the scope: what the trigger watches")
      ->type_name("SIGNAL");
  command.add_option("--trig-slope", settings.TrigSlope, "Of the scope: Pos or Neg");
  AddNumber(command, "--trig-level", settings.TrigLevel, NumberRange::Any,
            "Of the scope: in the source's unit");
  AddNumber(command, "--trig-position", settings.TrigPosition, NumberRange::NotNegative,
            "Of the scope: per cent of the screen before the event");
}

}  // namespace torvane::cli
