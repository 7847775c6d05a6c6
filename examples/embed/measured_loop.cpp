// Measures how a built-in loop follows a step of its command, and its margins, by what torvane-cli
// measures them with: the figures are its own, to the bit.

#include <torvane/core/text.h>
#include <torvane/study/run.h>
#include <torvane/workbench/measure/measurement.h>
#include <torvane/workbench/model/model_options.h>
#include <torvane/workbench/work_fault.h>

#include <cstdlib>
#include <iostream>

namespace {

/// Lets a run go on.
class Unwatched final : public torvane::RunWatch {
 public:
  void CheckIn(double /*time*/) override {}
};

/// Takes what is reported in this thread for as long as it lives, and prints it.
class Desk final : public torvane::Supervisor {
 public:
  Desk() : previous_(torvane::InstallMessageSink(this)) {}
  ~Desk() override { torvane::InstallMessageSink(previous_); }
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  std::unique_ptr<torvane::RunWatch> WatchRun(const torvane::ZelModel& /*model*/,
                                              double /*until*/) override {
    return std::make_unique<Unwatched>();
  }
  void Report(std::string_view label, std::string_view text) override {
    std::cerr << label << ": " << text << '\n';
  }
  void Print(std::string_view lines) override { std::cerr << lines << '\n'; }

 private:
  torvane::MessageSink* previous_;
};

void Print(const torvane::RunReadings& readings) {
  for (const torvane::RunMeasure& measure : torvane::Measures()) {
    if (const auto& value = readings.*measure.Value) {
      std::cout << measure.Caption << ": " << torvane::FormatShortest(*value) << ' ' << measure.Unit
                << '\n';
    }
  }
  for (const std::string& reason : readings.Reasons) std::cout << "Missing: " << reason << '\n';
}

}  // namespace

int main() {
  Desk desk;
  torvane::MeasureOptions options;
  torvane::ResponseOptions& response = options.Bode.Response;
  response.Model.Model = "6-1 PID Controller";
  response.Model.Settings = {"KVP=1"};
  response.Input = "vC";
  response.Output = "vF";
  options.WithBode = true;
  // Step, closed and open response are measured in a model of its own each.
  const torvane::MakeModel make = [&] { return torvane::OpenModel(response.Model, desk); };
  try {
    torvane::CheckMeasurement(*make(), options, desk);
    Print(torvane::ReadRun(make, options, desk));
  } catch (const torvane::WorkFault& fault) {
    std::cerr << fault.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
