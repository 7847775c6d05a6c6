#include <CLI/CLI.hpp>
#include <set>

#include "cli/arguments/measure_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/number_options.h"
#include "cli/study/study.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

// Results were made with all other options already. Were they told apart by the parser, each would
// say so in the help.
void CheckMergeOptions(const CLI::App& command) {
  const std::set<std::string> fitting{"--merge",  "--out",    "--picture", "--chosen",
                                      "--map",    "--axes",   "--limits",  "--contours",
                                      "--levels", "--format", "--units",   "--best"};
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() || option->count() == 0) continue;
    if (fitting.contains(option->get_name())) continue;
    throw UsageError(option->get_name() + " does not go with --merge");
  }
}

// All but what says where the runs are done, and what is made of them.
void TakeGivenOptions(const CLI::App& command, StudyCommand& options) {
  const std::set<std::string> elsewhere{"--jobs",   "--shard", "--out",    "--picture",  "--chosen",
                                        "--map",    "--axes",  "--limits", "--contours", "--levels",
                                        "--format", "--units", "--best"};
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() || option->count() == 0) continue;
    if (elsewhere.contains(option->get_name())) continue;
    std::string values;
    for (const std::string& value : option->results()) {
      values += (values.empty() ? "" : " ") + value;
    }
    options.Study.Given.emplace_back(option->get_name(), values);
  }
}

}  // namespace

void AddStudyCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "study", "Measure many runs of a model with other settings each, a line of CSV a run");
  const auto options = std::make_shared<StudyCommand>();
  command
      ->add_option(
          "[STUDY.csv] MODEL", options->Study.Files,
          "A table with a column for each constant or generator setting and a row for each "
          "run; a model or model file")
      ->type_name("");
  CLI::Option* const vary =
      command
          ->add_option("--vary", options->Study.Vary,
                       "Vary a constant or generator setting, without a table; several make a "
                       "grid. Repeatable")
          ->allow_extra_args(false)
          ->type_name("NAME=FROM:TO:COUNT[:log]");
  CLI::Option* const sample =
      AddInteger(*command, "--sample", options->Study.Sample,
                 "Take so many samples of the ranges, a Latin hypercube, in place of the grid")
          ->needs(vary);
  AddInteger(*command, "--seed", options->Study.Seed, "Which samples (1 without it)")
      ->needs(sample);
  AddMeasureOptions(*command, options->Study.Measure);
  command
      ->add_option("--require", options->Study.Require,
                   "What a run has to reach, as Overshoot<10 or GainMargin>=6: a column says "
                   "whether it meets all. Repeatable")
      ->allow_extra_args(false)
      ->type_name("MEASURE<NUMBER");
  command
      ->add_option("--best", options->Study.Best,
                   "Say which of the runs that meet what is required has the best of this measure")
      ->type_name("MEASURE");
  AddInteger(*command, "--jobs", options->Study.Jobs,
             "Processes at a time; one a processor without it. The result is the same");
  command->add_option("--shard", options->Study.Shard, "Do the share K of N alone")
      ->type_name("K/N");
  command->add_flag("--merge", options->Merge,
                    "Put the results of all shares, which stand in place of the model, together");
  command
      ->add_option("--out", options->Out,
                   "File to write; standard output without it. Until all runs are done their rows "
                   "stand in FILE.part, where the same command goes on after an end before time")
      ->type_name("FILE.csv");
  CLI::Option* const picture =
      command
          ->add_option("--picture", options->Picture,
                       "Draw the response of every run, or the map, into this file as well")
          ->type_name("FILE.png|svg|pdf");
  AddInteger(*command, "--chosen", options->Chosen, "Run that the picture sets off")
      ->needs(picture);
  CLI::Option* const map =
      command
          ->add_option("--map", options->Map.Measure,
                       "Draw this measure over the first two settings that vary instead, a map "
                       "for each value of the others")
          ->type_name("MEASURE")
          ->needs(picture);
  command->add_option("--axes", options->Map.Axes, "The two settings over which the map is drawn")
      ->type_name("X,Y")
      ->needs(map);
  command
      ->add_option("--limits", options->Map.Limits,
                   "Values at the ends of the map's colours; without it those measured, but for "
                   "the few that lie far away")
      ->type_name("LOW:HIGH")
      ->needs(map);
  command->add_flag("--contours", options->Map.Contours, "Draw lines of equal values into the map")
      ->needs(map);
  command
      ->add_option("--levels", options->Map.Levels,
                   "Draw such lines at these values of the measure")
      ->type_name("NUMBER,...")
      ->needs(map);
  AddTableForm(*command, options->Form);
  command->callback([options, command, &console] {
    if (options->Merge) {
      CheckMergeOptions(*command);
      MergeStudies(*options);
    } else {
      TakeGivenOptions(*command, *options);
      RunStudy(*options, console);
    }
  });
}

}  // namespace torvane::cli
