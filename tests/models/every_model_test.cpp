#include <gtest/gtest.h>

#include <cmath>

#include "core/run_loop.h"
#include "instruments/meter/meter.h"
#include "models/loop.h"

// What holds for each model of the catalogue.

namespace torvane {
namespace {

using test::BringClassToRest;
using test::Loop;

std::string CaseName(const testing::TestParamInfo<std::string>& info) {
  std::string name;
  for (const char c : info.param.substr(0, info.param.find(' '))) {
    name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  }
  return name;
}

class EveryModel : public testing::TestWithParam<std::string> {};

/// Every signal is a number, and some signal moves.
void ExpectAlive(ZelBenchTop& bench) {
  bool moves = false;
  for (const Variable* v : bench.Variables()) {
    EXPECT_TRUE(std::isfinite(v->Value)) << v->Name() << " = " << v->Value;
    moves = moves || v->Value != 0.0;
  }
  EXPECT_TRUE(moves);
}

// As the desktop runs it, with every instrument at work. A report fails the test, among them that
// of states or blocks which do not agree with the bench.
TEST_P(EveryModel, RunsTenSecondsWithItsInstruments) {
  Loop loop(GetParam());
  ASSERT_TRUE(AddMeter(loop.Model(), "Meter"));
  for (const auto kind : {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine}) {
    // Pressed one after the other: a sweep takes the rest of the time.
    for (Instrument* analyser : loop.Bench().Instruments(kind)) {
      dynamic_cast<FrequencyAnalyser&>(*analyser).Run();
      const double end = loop.Model().Time() + 2.0;
      while (loop.Model().Time() < end && analyser->Measuring()) RunPass(loop.Model());
    }
  }
  while (loop.Model().Time() < 10.0) ASSERT_EQ(RunPass(loop.Model()), PassResult::Running);
  ExpectAlive(loop.Bench());
}

// A model's own solver, which is bound to it at compile time, against the general one.
TEST_P(EveryModel, GivesTheBitsOfTheGeneralSolver) {
  constexpr double End = 0.15;
  std::vector<std::vector<double>> outcomes;
  for (const bool general : {false, true}) {
    BringClassToRest(GetParam());
    Loop loop(GetParam());
    ZelSolver& solver = loop.Model().Solver();
    general ? solver.ZelSolver::RunUntil(End) : solver.RunUntil(End);
    outcomes.emplace_back();
    for (const Variable* v : loop.Bench().Variables()) outcomes.back().push_back(v->Value);
  }
  EXPECT_EQ(outcomes[0], outcomes[1]);
  EXPECT_NE(outcomes[0], std::vector<double>(outcomes[0].size(), 0.0));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryModel, testing::ValuesIn(ModelNames()), CaseName);

}  // namespace
}  // namespace torvane
