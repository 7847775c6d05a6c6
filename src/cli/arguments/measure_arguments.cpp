#include "cli/arguments/measure_arguments.h"

#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/arguments/response_arguments.h"
#include "cli/io/number_options.h"

namespace torvane::cli {

void AddMeasureOptions(CLI::App& command, MeasureOptions& options) {
  BodeOptions& bode = options.Bode;
  command
      .add_option(
          "--command", bode.Response.Input,
          "Signal that is to be followed; without it and --response the closed loop is measured")
      ->type_name("SIGNAL");
  command.add_option("--response", bode.Response.Output, "Signal that follows it")
      ->type_name("SIGNAL");
  AddNumber(command, "--until", options.Until, NumberRange::Positive,
            "End so long after the step at the latest, seconds; 10 s without it");
  CLI::Option* const window =
      AddNumber(command, "--window", options.Window, NumberRange::Positive,
                "Measure so long after the step, seconds; until the response stands without it");
  AddNumber(command, "--time-base", options.TimeBase, NumberRange::Positive,
            "The same as ten divisions of the scope, seconds a division")
      ->excludes(window);
  command
      .add_option("--peak", options.Peak,
                  "Tell the largest magnitude of this signal as well, from just before the step on")
      ->type_name("SIGNAL");
  CLI::Option* const withBode =
      command.add_flag("--bode", options.WithBode,
                       "Measure bandwidth, peaking, gain and phase margin as well, with the FFT "
                       "analyser in a run of its own");
  command
      .add_flag("--theory", options.WithTheory,
                "Tell bandwidth, peaking and margins from the linearised equations instead, "
                "without the scatter of a measurement")
      ->excludes(withBode);
  CLI::Option* const loop =
      command
          .add_option("--loop", options.Loop,
                      "Read the margins off the open loop from IN, the error, to OUT, the "
                      "feedback, in place of the loop that the model names")
          ->type_name("IN:OUT");
  loop->needs(withBode);
  const std::size_t before = command.get_options().size();
  AddRecordOptions(command, bode);
  AddExcitationOptions(command, bode.Response);
  const std::vector<CLI::Option*> all = command.get_options();
  for (std::size_t k = before; k < all.size(); ++k) all[k]->needs(withBode);
  AddModelSettings(command, bode.Response.Model);
}

}  // namespace torvane::cli
