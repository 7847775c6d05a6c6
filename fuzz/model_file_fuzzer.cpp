#include <algorithm>
#include <unordered_set>

#include "fuzzing.h"
#include "pooled_host.h"
#include "support/model_limits.h"

// Feeds the reader of model files. Whatever a file says, the model that it leaves has settings
// within their limits, runs, and saves a file that loads again without a report and gives the same
// one.

namespace {

using namespace torvane;
using fuzz::Require;

// A diverging loop ends in an exception, as on the desktop.
void RunShortly(ZelModel& model) {
  try {
    for (int chunk = 0; chunk < 4; ++chunk) {
      model.Solver().RunUntil(std::min(model.Bench().NextStopTime(), model.Time() + 1e-4));
      model.Bench().ServiceInstruments();
    }
  } catch (const SolverOverflow&) {
    model.Reset();
  }
}

void CheckSaving(test::PooledHost& host) {
  static test::PooledHost again(test::PooledHost::HandOut::AsLeft);
  // Most inputs leave what an earlier one has left.
  static std::unordered_set<std::size_t> checked;
  const std::string saved = ModelFileText(*host.CurrentModel());
  host.SetText(saved);
  if (!checked.insert(std::hash<std::string>()(saved)).second) return;
  again.Clear();
  const int before = fuzz::Sink().Reports;
  Require(LoadModelText(saved, again).AtEnd, "the saved file does not load:\n" + saved);
  Require(fuzz::Sink().Reports == before, "the saved file is reported about:\n" + saved);
  const std::string second = ModelFileText(*again.CurrentModel());
  Require(second == saved, "saved:\n" + saved + "\nand again:\n" + second);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static test::PooledHost host;
  InstallMessageSink(&fuzz::Sink());
  host.Clear();
  LoadModelText(fuzz::AsText(data, size), host);
  ZelModel* const model = host.CurrentModel();
  if (!model) return 0;
  const std::string found = test::LimitCheck::Run(*model);
  Require(found.empty(), found);
  CheckSaving(host);
  RunShortly(*model);
  return 0;
}
