#include <algorithm>
#include <cstdio>

#include "cli/exit_code.h"
#include "cli/io/number_options.h"
#include "cli/program.h"
#include "fuzzing.h"
#include "pooled_host.h"
#include "study/study_fault.h"
#include "support/model_limits.h"
#include "workbench/model/model_options.h"
#include "workbench/model/settings.h"
#include "workbench/model/wave_files.h"
#include "workbench/study/study_set_up.h"
#include "workbench/work_fault.h"

// Feeds the command line: each line of the input is an argument. Whatever they say, the program
// refuses them or explains itself, and a model that options were applied to has settings within
// their limits.

namespace {

using namespace torvane;
using fuzz::Require;

constexpr std::size_t MostArguments = 40;

std::vector<std::string> Arguments(std::string_view text) {
  std::vector<std::string> arguments;
  while (!text.empty() && arguments.size() < MostArguments) {
    const std::size_t end = std::min(text.find_first_of(std::string_view("\n\0", 2)), text.size());
    arguments.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return arguments;
}

// With more unknown options than anything before them can take for its value: no command is carried
// out.
void Parse(const std::vector<std::string>& arguments) {
  std::vector<const char*> words{"torvane-cli"};
  for (const std::string& argument : arguments) words.push_back(argument.c_str());
  words.insert(words.end(), 4, "--no-such-option");
  const int code = cli::RunProgram(static_cast<int>(words.size()), words.data());
  Require(code == 0 || code == static_cast<int>(cli::ExitCode::Usage),
          "exit code " + std::to_string(code));
}

template <class Function>
void Try(const Function& apply) {
  try {
    apply();
  } catch (const WorkFault& error) {
    const bool noFile = error.What() == WorkFault::Kind::File;
    Require(noFile || error.What() == WorkFault::Kind::Usage, error.what());
  } catch (const StudyFault& fault) {
    Require(fault.What() == StudyFault::Kind::Asked, fault.what());
  }
}

void Apply(const std::vector<std::string>& arguments, ZelModel& model) {
  WaveFiles files;
  for (const std::string& text : arguments) {
    Try([&] { ApplySetting(model.Bench(), text); });
    Try([&] { ApplyWave(model.Bench(), text, files); });
    Try([&] { NamedSignal(model.Bench(), text); });
    Try([&] { cli::ParseOption("--option", text, cli::NumberRange::Positive); });
    using enum VaryValues;
    for (const auto values : {OfGrid, Listed, Sampled, Searched}) {
      Try([&] { ParseVaryRange(text, values); });
    }
    Try([&] { RunsOfShare(text, 3); });
  }
  const std::string found = test::LimitCheck::Run(model);
  Require(found.empty(), found);
}

}  // namespace

// Help goes to standard output and messages to standard error: neither is looked at here.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  stderr = std::fopen("/dev/null", "w");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static test::PooledHost host;
  InstallMessageSink(&fuzz::Sink());
  const std::vector<std::string> arguments = Arguments(fuzz::AsText(data, size));
  Parse(arguments);
  host.ChangeModel("16-1 Cascade Position Loop");
  Apply(arguments, *host.CurrentModel());
  return 0;
}
