#pragma once

#include <string>
#include <vector>

#include "cli/arguments/response_arguments.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "instruments/analyser/margins.h"
#include "instruments/analyser/read_as.h"

namespace torvane::cli {

/// Says what makes the measured response doubtful, and writes it at the head of a CSV file as well.
/// Rows on standard output are for another program, which reads no comments, and JSON has none.
void TellDoubts(const FrequencyAnalyser& analyser, const TableForm& form, ResultFile& file);

/// What a response's line says beyond gain and phase: the coherence of an averaged one, and what
/// the overlay reads at the same frequency, empty where it has nothing.
void AddMoreColumns(const FrequencyAnalyser& analyser, std::vector<Column>& columns);
std::vector<std::string> MoreFields(const FrequencyAnalyser& analyser, int index, double hz);

/// Whether the points are written: to --out, or to standard output unless the margins go there.
bool WritesPoints(const ResponseOutput& options);

/// Prints what is read off the measured response, and off the overlay, to standard output; notes
/// why nothing is.
void PrintMargins(const FrequencyAnalyser& analyser, const ResponseOutput& options);

/// Writes what was read off a response that goes by this name.
void PrintMarginLines(const std::string& response, const Margins& margins, const TableForm& form,
                      ResultFile& file);

}  // namespace torvane::cli
