#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/diagrams.h"
#include "cli/io/result_file.h"
#include "core/names.h"
#include "workbench/model/model_options.h"
#include "workbench/unknown_name.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct DiagramOptions {
  std::string Model;
  std::string Out;
  std::string Format = "svg";
};

void Draw(const DiagramOptions& options, Console& console) {
  const bool dot = options.Format == "dot";
  if (!dot && options.Format != "svg") throw UnknownName("format", options.Format, {"svg", "dot"});
  for (const char* const ending : {".png", ".pdf"}) {
    if (!Lower(options.Out).ends_with(ending)) continue;
    throw UsageError("a diagram is written as svg or dot; \"" + options.Out + "\" names neither");
  }
  const auto model = OpenModel(options.Model, console);
  ResultFile output(options.Out);
  output.Write(dot ? DotOf(*model) : DiagramOf(*model));
  output.Close();
}

}  // namespace

void AddDiagramCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand("diagram",
                                               "Write a model's block diagram as SVG; that of a "
                                               "loop of your own is made from its equations");
  const auto options = std::make_shared<DiagramOptions>();
  AddModelName(*command, options->Model);
  command->add_option("--out", options->Out, "File to write; standard output without it")
      ->type_name("FILE");
  command
      ->add_option("--format", options->Format,
                   "svg, or dot: the diagram of a loop of your own in Graphviz's language")
      ->type_name("svg|dot");
  command->callback([options, &console] { Draw(*options, console); });
}

}  // namespace torvane::cli
