#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "core/csv_table.h"
#include "core/files/text_file.h"
#include "core/text.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

constexpr std::size_t LargestRun = std::size_t{1} << 30U;

struct DrawOptions {
  std::string Rows;
  std::string Title;
  std::string Picture;
};

// "vC (RPM)", as --units writes it.
RecordedRun::Signal SignalOf(const std::string& caption) {
  const auto at = caption.rfind(" (");
  if (at == std::string::npos || !caption.ends_with(')')) return {caption, ""};
  return {caption.substr(0, at), caption.substr(at + 2, caption.size() - at - 3)};
}

RecordedRun ReadRows(const std::string& path, const std::string& title) {
  std::string text;
  const std::string fault = ReadTextFile(path, LargestRun, text);
  if (!fault.empty()) throw FileError(fault);
  CsvReader rows(text);
  CsvRow row;
  if (!rows.Next(row) || row.Fields.size() < 2 || SignalOf(row.Fields.front()).Name != "Time") {
    throw FileError(path + " has no rows of a run: a column Time and one for each signal");
  }
  const std::size_t width = row.Fields.size();
  std::vector<RecordedRun::Signal> signals;
  for (std::size_t k = 1; k < width; ++k) signals.push_back(SignalOf(row.Fields[k]));
  const std::string timeUnit = SignalOf(row.Fields.front()).Unit;
  RecordedRun run(title.empty() ? path : title, timeUnit.empty() ? "s" : timeUnit,
                  std::move(signals));
  std::vector<double> numbers;
  while (rows.Next(row)) {
    numbers.clear();
    for (const std::string& field : row.Fields) {
      if (const auto number = ParseNumber(field)) numbers.push_back(*number);
    }
    const bool whole = row.Whole && row.Fields.size() == width && numbers.size() == width;
    if (!whole || (!run.Times().empty() && numbers.front() < run.End())) {
      throw FileError(path + ":" + std::to_string(row.Line) + ": no row of the run");
    }
    run.Add(numbers.front(), std::span(numbers).subspan(1));
  }
  if (run.Times().empty()) throw FileError(path + " has no rows");
  return run;
}

void Draw(const DrawOptions& options) {
  CheckPictureFile(options.Picture);
  CheckOutputs("", options.Picture, options.Rows);
  WritePicture(ReadRows(options.Rows, options.Title), options.Picture);
}

}  // namespace

void AddDrawCommand(CLI::App& app) {
  CLI::App* const command =
      app.add_subcommand("draw", "Draw the signals of a run from the rows that \"run\" wrote");
  const auto options = std::make_shared<DrawOptions>();
  command->add_option("FILE", options->Rows, "CSV, best with --units")->required()->type_name("");
  command->add_option("--picture", options->Picture, "File to draw into")
      ->required()
      ->type_name("FILE.png|svg|pdf");
  command->add_option("--title", options->Title, "What stands above; the file's name without it")
      ->type_name("TEXT");
  command->callback([options] { Draw(*options); });
}

}  // namespace torvane::cli
