// Measures a number of runs of 6-1 in a row as a study does, each in a model of its own, for an
// instruction counter, and tells how many of the solver's steps one takes.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "core/bench.h"
#include "core/model.h"
#include "core/solver.h"
#include "study/row.h"
#include "workbench/measure/measurement.h"
#include "workbench/model/model_options.h"

namespace torvane::bench {
namespace {

class StepCounter final : public Supervisor {
 public:
  std::unique_ptr<RunWatch> WatchRun(const ZelModel& model, double /*until*/) override {
    return std::make_unique<Watch>(*this, model);
  }
  void Report(std::string_view /*label*/, std::string_view text) override { Print(text); }
  void Print(std::string_view lines) override {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(lines.size()), lines.data());
  }

  double Steps() const { return steps_; }

 private:
  class Watch final : public RunWatch {
   public:
    Watch(StepCounter& counter, const ZelModel& model) : counter_(counter), model_(model) {}
    ~Watch() override {
      counter_.steps_ = std::round(model_.Time() / model_.Bench().Solver()->Step());
    }
    void CheckIn(double /*time*/) override {}

   private:
    StepCounter& counter_;
    const ZelModel& model_;
  };

  double steps_ = 0.0;
};

int Count(int runs) {
  StepCounter counter;
  MeasureOptions options;
  options.Bode.Response.Model.Model = "6-1";
  options.Bode.Response.Input = "vC";
  options.Bode.Response.Output = "vF";
  options.Until = 0.2;
  const MakeModel make = [&] { return OpenModel(options.Bode.Response.Model, counter); };
  for (; runs > 0; --runs) {
    if (!ReadRun(make, options, counter).Settling) return 1;
  }
  std::printf("%.0f\n", counter.Steps());
  return 0;
}

}  // namespace
}  // namespace torvane::bench

int main(int argc, char** argv) {
  return argc == 2 ? torvane::bench::Count(std::atoi(argv[1])) : 2;
}
