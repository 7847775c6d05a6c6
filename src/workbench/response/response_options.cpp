#include "workbench/response/response_options.h"

#include "core/messages.h"
#include "core/names.h"
#include "workbench/work_fault.h"

namespace torvane {

void CheckChannels(const ResponseOptions& options) {
  if (NamesModelFile(options.Model.Model)) return;
  if (!options.Setup.empty()) return;
  if (options.Input.empty() && options.Output.empty()) {
    throw UsageError(
        "--input and --output are required, or --setup, which names a pair of the model");
  }
  if (options.Input.empty()) throw UsageError("--input is required");
  if (options.Output.empty()) throw UsageError("--output is required");
}

namespace {

void ChoosePair(FrequencyAnalyser& analyser, const std::string& name) {
  std::vector<std::string> names;
  std::string all;
  for (const AnalyserSetup& setup : analyser.Setups()) {
    if (Lower(setup.Name) == Lower(name)) {
      analyser.SelectSetup(static_cast<int>(names.size()));
      return;
    }
    names.push_back(setup.Name);
    all += (all.empty() ? "" : ", ") + setup.Name;
  }
  if (names.empty()) throw UsageError("the model offers no pairs of signals");
  throw UsageError("unknown pair \"" + name + "\"; the model offers " + all);
}

}  // namespace

FrequencyAnalyser& ChooseAnalyser(ZelBenchTop& bench, InstrumentKind kind,
                                  const ResponseOptions& options) {
  const auto& analysers = bench.Instruments(kind);
  if (analysers.empty()) throw UsageError("the model has no such analyser");
  auto& analyser = dynamic_cast<FrequencyAnalyser&>(*analysers.front());
  if (!options.Setup.empty()) ChoosePair(analyser, options.Setup);
  if (!options.Input.empty()) analyser.SetInput(NamedSignal(bench, options.Input).Name());
  if (!options.Output.empty()) analyser.SetOutput(NamedSignal(bench, options.Output).Name());
  return analyser;
}

void Heed(const SetupFinding& finding) {
  if (finding.What == SetupFinding::Kind::Refusal) {
    const std::string fits = finding.WouldFit.empty() ? "" : " (fits: " + finding.WouldFit + ")";
    throw UsageError(finding.Text + fits);
  }
  if (finding.What == SetupFinding::Kind::Warning) Warning(finding.Text);
}

void ApplyOptions(FrequencyAnalyser& analyser, const ResponseOptions& options) {
  if (options.Average) analyser.SetAverages(*options.Average);
  for (const std::string& warning : analyser.Warnings()) Warning(warning);
}

}  // namespace torvane
