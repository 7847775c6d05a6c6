#include "cli/arguments/model_arguments.h"

#include <CLI/CLI.hpp>

namespace torvane::cli {

void AddModelName(CLI::App& command, std::string& model) {
  command
      .add_option("MODEL", model,
                  "Name of a model, as \"models\" lists them, its beginning (\"6-1\") or index, a "
                  "model file, or a loop of your own, a file that ends in .mo")
      ->required()
      ->type_name("");
}

void AddModelOptions(CLI::App& command, ModelOptions& options) {
  AddModelName(command, options.Model);
  AddModelSettings(command, options);
}

void AddModelSettings(CLI::App& command, ModelOptions& options) {
  command
      .add_option(
          "--set", options.Settings,
          "Set a constant; VALUE of a list constant is a choice's text or index. Repeatable")
      ->allow_extra_args(false)
      ->type_name("NAME=VALUE");
  command
      .add_option(
          "--wave", options.Waves,
          "Set the waveform generator: Waveform (name or index), Amplitude, FreqHz, Offset, "
          "PhaseDeg or DutyCycle; GENERATOR:KEY=VALUE addresses one by name. FILE.csv or "
          "File=FILE.csv "
          "plays a table of time and value; FILE.csv:COLUMN one of several columns. Repeatable")
      ->allow_extra_args(false)
      ->type_name("KEY=VALUE|FILE");
  command.add_flag("--yes", options.AnswerOk,
                   "Answer OK to every question; without it the answer is Cancel");
}

}  // namespace torvane::cli
