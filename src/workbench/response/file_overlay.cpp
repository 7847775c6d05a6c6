#include "workbench/response/file_overlay.h"

#include <utility>

#include "core/messages.h"
#include "instruments/analyser/response_csv.h"
#include "workbench/response/response_options.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

ResponseHints Hints(const std::string& columns, const std::string& units) {
  const auto hints = ParseResponseHints(columns, units);
  if (hints) return *hints;
  throw UsageError(
      "--overlay-columns needs three captions or numbers, --overlay-units three units "
      "(Hz, kHz, MHz or rad/s, dB or abs, deg or rad)");
}

}  // namespace

void LayFile(FrequencyAnalyser& analyser, const std::string& path, const std::string& columns,
             const std::string& units) {
  ResponseText text = ReadResponseFile(path, Hints(columns, units));
  if (!text.Fault.empty()) {
    const char* const help = text.UnitsMissing ? "; --overlay-units tells, as in Hz,dB,deg" : "";
    throw FileError("--overlay " + text.Fault + help);
  }
  if (!text.Note.empty()) Note("--overlay \"" + path + "\": " + text.Note);
  if (text.Responses.size() > 1) {
    Note("--overlay \"" + path + "\": the first of " + std::to_string(text.Responses.size()) +
         " responses is taken; --overlay-columns chooses");
  }
  analyser.LoadMemory(OverlaySlot, std::move(text.Responses.front().Curve), path);
}

}  // namespace torvane
