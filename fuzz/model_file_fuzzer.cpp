#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "core/messages.h"
#include "models/model_file_host.h"
#include "support/model_limits.h"

// Feeds the reader of model files. Whatever a file says, the model that it leaves has settings
// within their limits, runs, and saves a file that loads again and gives the same one.

namespace {

using namespace torvane;

/// Drops reports and agrees to everything.
class SilentSink final : public MessageSink {
 public:
  void Show(MessageKind /*kind*/, const std::string& /*text*/) override {}
  bool Ask(MessageKind /*kind*/, const std::string& /*text*/) override { return true; }
  void EndApplication() override { std::abort(); }
};

void Require(bool good, const std::string& what) {
  if (good) return;
  std::fprintf(stderr, "%s\n", what.c_str());
  std::abort();
}

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

void CheckSaving(const ZelModel& model) {
  const std::string saved = ModelFileText(model);
  CatalogueHost again;
  Require(LoadModelText(saved, again), "the saved file does not load:\n" + saved);
  const std::string second = ModelFileText(*again.Model);
  Require(second == saved, "saved:\n" + saved + "\nand again:\n" + second);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static SilentSink sink;
  InstallMessageSink(&sink);
  CatalogueHost host;
  LoadModelText({reinterpret_cast<const char*>(data), size}, host);
  if (!host.Model) return 0;
  const std::string found = test::LimitCheck::Run(*host.Model);
  Require(found.empty(), found);
  CheckSaving(*host.Model);
  RunShortly(*host.Model);
  return 0;
}
