// Runs a number of steps of one loop and nothing else, so that an instruction counter can tell what
// a step costs: the difference of two runs of different length is free of all set-up.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "fused_loops.h"
#include "loops/own_loops.h"
#include "models/catalogue.h"
#include "odeint_pi.h"

namespace torvane::bench {
namespace {

template <class Loop>
double RunLoop(long steps) {
  Loop loop;
  for (long i = 0; i < steps; ++i) loop.RunStep();
  return loop.Output();
}

template <class Loop>
double RunEngine(long steps) {
  const auto model = LoadModel(FindModel(Loop::Model));
  model->Solver().RunUntil((static_cast<double>(steps) - 0.5) * Loop::Step);
  return model->Time();
}

// A loop's text, as a file of share/loops has it.
double RunText(const std::string& file, long steps) {
  std::ifstream stream(file);
  std::ostringstream text;
  text << stream.rdbuf();
  const auto plan = loops::ReadLoop(text.str()).Plan;
  if (!plan) return 0.0;
  const auto model = loops::MakeLoop(file, plan);
  model->Solver().RunUntil((static_cast<double>(steps) - 0.5) * plan->Step);
  return model->Time();
}

template <class Loop>
double Run(bool engine, long steps) {
  return engine ? RunEngine<Loop>(steps) : RunLoop<Loop>(steps);
}

int Count(const std::string& side, const std::string& figure, long steps) {
  const bool engine = side == "engine";
  double result = 0.0;
  if (side == "text") {
    result = RunText(figure, steps);
  } else if (side == "odeint") {
    result = RunLoop<OdeintAnalogPI>(steps);
  } else if (figure == "2-1") {
    result = Run<FusedPiPlus>(engine, steps);
  } else if (figure == "3-1") {
    result = Run<FusedAnalogPI>(engine, steps);
  } else if (figure == "6-1") {
    result = Run<FusedPid>(engine, steps);
  } else if (figure == "15-1") {
    result = Run<FusedResonance>(engine, steps);
  } else {
    std::fprintf(stderr, "usage: torvane_count engine|fused|odeint|text FIGURE|FILE STEPS\n");
    return 2;
  }
  std::printf("%.17g\n", result);
  return 0;
}

}  // namespace
}  // namespace torvane::bench

int main(int argc, char** argv) {
  return torvane::bench::Count(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "",
                               argc > 3 ? std::atol(argv[3]) : 0);
}
