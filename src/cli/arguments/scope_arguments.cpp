#include "cli/arguments/scope_arguments.h"

#include <CLI/CLI.hpp>

#include "cli/io/number_options.h"

namespace torvane::cli {

void AddScopeSettings(CLI::App& command, ScopeSettings& settings) {
  AddNumber(command, "--time-base", settings.TimeBase, NumberRange::Positive,
            "Of the scope: seconds a division, of which a screen has ten");
  command.add_option("--show", settings.Show, "Of the scope: the signals that it shows")
      ->type_name("A,B,...");
  command
      .add_option("--scale", settings.Scales,
                  "Of the scope: units a division of a signal's trace. Repeatable")
      ->allow_extra_args(false)
      ->type_name("SIGNAL=NUMBER");
  command
      .add_option("--shift", settings.Shifts,
                  "Of the scope: units by which a signal's trace is moved up. Repeatable")
      ->allow_extra_args(false)
      ->type_name("SIGNAL=NUMBER");
  command.add_option("--trig-mode", settings.TrigMode, "Of the scope: how a sweep begins")
      ->type_name("Cont|Auto|Normal");
  command
      .add_option("--trig-source", settings.TrigSource, "Of the scope: what the trigger watches")
      ->type_name("SIGNAL");
  command.add_option("--trig-slope", settings.TrigSlope, "Of the scope: which way the source goes")
      ->type_name("Pos|Neg");
  AddNumber(command, "--trig-level", settings.TrigLevel, NumberRange::Any,
            "Of the scope: in the source's unit");
  AddNumber(command, "--trig-position", settings.TrigPosition, NumberRange::NotNegative,
            "Of the scope: per cent of the screen before the event");
}

}  // namespace torvane::cli
