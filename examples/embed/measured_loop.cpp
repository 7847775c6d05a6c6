// Measures how a built-in loop follows a step of its command, and its margins, by what torvane-cli
// measures them with: the figures are its own, to the bit.

#include <torvane/core/text.h>
#include <torvane/study/run.h>
#include <torvane/workbench/measure/measurement.h>
#include <torvane/workbench/model/model_options.h>
#include <torvane/workbench/work_fault.h>

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

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

void Print(const torvane::RunReadings& readings, const torvane::MeasureSet& set,
           const std::vector<std::string>& units) {
  const std::vector<std::string> captions = torvane::MeasureCaptions(set);
  const std::vector<std::optional<double>> values = torvane::MeasureValues(readings, set);
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (!values[k]) continue;
    std::cout << captions[k] << ": " << torvane::FormatShortest(*values[k]) << ' ' << units[k]
              << '\n';
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
  response.Input = "vC";  // the model's closed loop without the two
  response.Output = "vF";
  options.WithBode = true;
  // Step, closed and open response are measured in a model of its own each.
  const torvane::MakeModel make = [&] { return torvane::OpenModel(response.Model, desk); };
  try {
    const auto first = make();
    torvane::CheckMeasurement(*first, options, desk);
    const torvane::MeasureSet set = options.Measured();
    Print(torvane::ReadRun(make, options, desk), set,
          torvane::UnitsOfMeasures(*first, options, set));
  } catch (const torvane::WorkFault& fault) {
    std::cerr << fault.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
