// Opens a built-in loop, makes it stiffer, prints how it answers its command, and measures its
// margins.

#include <torvane/core/constant.h>
#include <torvane/core/overflow.h>
#include <torvane/models/catalogue.h>

#include <cstdlib>

#include "measuring.h"
#include "reports.h"

namespace {

constexpr const char* Name = "3-1 PI Controller";

/// The loop with its gain, as the first of its class whatever else the program runs.
std::unique_ptr<torvane::ZelModel> StifferLoop() {
  std::unique_ptr<torvane::ZelModel> model = torvane::Catalogue().Load(Name);
  model->KeepOwnMemory();
  torvane::Constant* const gain = model->Bench().FindConst("KP");
  gain->Set(1.2);  // limited to gain->Lower() and gain->Upper()
  return model;
}

void PrintStep(torvane::ZelModel& model) {
  const torvane::Variable* const command = model.Bench().FindVar("Command");
  const torvane::Variable* const response = model.Bench().FindVar("Response");
  std::cout << "Time,Command,Response\n";
  for (int row = 0; row <= 40; ++row) {
    // Seconds; to the nearest step.
    model.Solver().RunUntil(row * 0.001 - 0.5 * model.Solver().Step());
    std::cout << torvane::FormatShortest(model.Time()) << ','
              << torvane::FormatShortest(command->DisplayValue()) << ','
              << torvane::FormatShortest(response->DisplayValue()) << '\n';
  }
}

}  // namespace

int main() {
  const Reports reports;
  try {
    PrintStep(*StifferLoop());
    Print(MeasureMargins(*StifferLoop(), "Error", "Feedback", 0.0002));
  } catch (const torvane::SolverOverflow& overflow) {
    std::cerr << "The loop is not stable: " << overflow.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
