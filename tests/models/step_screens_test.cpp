#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/solver.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope_math.h"
#include "models/loop.h"

// The measures of a step on each model's screen, beside the same quantities taken plainly from the
// signals at the end of every step of the solver.

namespace torvane {
namespace {

using Values = std::vector<double>;

/// A model's command, which its scope is triggered by, and the signals that follow it.
struct Rows {
  Values Times;
  Values Command;
  std::vector<Values> Responses;
};

ZelScope& ScopeOf(test::Loop& loop) {
  return loop.The<ZelScope>(InstrumentKind::Scope);
}

Rows RunRows(const std::string& name, double until, double hertz = 0.0) {
  test::Loop loop(name);
  for (Instrument* wave : loop.Bench().Instruments(InstrumentKind::WaveGenerator)) {
    if (hertz > 0.0) dynamic_cast<ZelWave&>(*wave).SetFreqHz(hertz);
  }
  const ZelScope& scope = ScopeOf(loop);
  const auto shown = scope.DisplayedChannels();
  Rows rows{{}, {}, std::vector<Values>(shown.size())};
  const double half = 0.5 * loop.Model().Solver().Step();
  while (loop.Model().Time() < until) {
    loop.Run(loop.Model().Time() + half);
    rows.Times.push_back(loop.Bench().TimeVar()->Value);
    rows.Command.push_back(scope.Trigger().Source().Signal().DisplayValue());
    for (std::size_t k = 0; k < shown.size(); ++k) {
      rows.Responses[k].push_back(scope.Channels()[shown[k]]->Signal().DisplayValue());
    }
  }
  return rows;
}

std::size_t RowAt(const Rows& rows, double time) {
  const auto at = std::ranges::lower_bound(rows.Times, time - 1e-9);
  return static_cast<std::size_t>(at - rows.Times.begin());
}

// What the response is when it stands: the mean of the 50 ms before a time, in a run whose command
// is held for half a second.
double Standing(const Rows& slow, const Values& response, double until) {
  const auto at = [&](double time) {
    return response.begin() + static_cast<std::ptrdiff_t>(RowAt(slow, time));
  };
  const auto from = at(until - 0.05);
  return std::accumulate(from, at(until), 0.0) / static_cast<double>(at(until) - from);
}

struct Truth {
  double Overshoot, Rise, Settling, Delay;
};

Truth MeasurePlainly(const Rows& rows, const Values& response, std::size_t jump, std::size_t end,
                     double from, double to) {
  const auto share = [&](std::size_t i) { return (response[i] - from) / (to - from); };
  const auto passes = [&](double level) {
    std::size_t i = jump;
    while (i < end && share(i) < level) ++i;
    return rows.Times[std::min(i, end - 1)];
  };
  Truth truth{0.0, passes(0.9) - passes(0.1), 0.0, passes(0.5) - rows.Times[jump]};
  for (std::size_t i = jump; i < end; ++i) {
    truth.Overshoot = std::max(truth.Overshoot, 100.0 * (share(i) - 1.0));
    if (std::abs(share(i) - 1.0) > 0.02) truth.Settling = rows.Times[i + 1] - rows.Times[jump];
  }
  return truth;
}

class StepScreens : public testing::TestWithParam<std::string> {};

// On the time base that the model comes with and on two faster and two slower ones: a time is true
// to a point's distance and a value to a hundredth of the step, or it is not told.
TEST_P(StepScreens, TellWhatTheRowsShow) {
  const Rows slow = RunRows(GetParam(), 1.5, 1.0);
  const Rows rows = RunRows(GetParam(), 2.1);
  for (const double factor : {0.2, 0.5, 1.0, 2.0, 5.0}) {
    SCOPED_TRACE(factor);
    test::Loop loop(GetParam());
    ZelScope& scope = ScopeOf(loop);
    const double base = factor * scope.TimeChannel().Horizontal().Scale;
    scope.SetHorizontalScale(scope.TimeChannel(), base);
    ScopeScreen screen;
    while (loop.Model().Time() < 1.0 || (!screen.EventTime && loop.Model().Time() < 2.0)) {
      loop.Model().RunChunk();
      if (scope.TakeScreenCompleted()) scope.CopyScreen(ScopeSweep::Whole, screen);
    }
    const auto measures = MeasureScreen(scope, screen, ScreenPixels(400, 250));
    for (std::size_t k = 0; k < measures.size(); ++k) {
      if (!measures[k].Step) continue;
      const StepMeasures& of = *measures[k].Step;
      const std::size_t first = RowAt(rows, screen.Time.front());
      const std::size_t last = RowAt(rows, screen.Time.back());
      const auto step = FindStep(std::span(rows.Command).subspan(first, last + 1 - first));
      const Values& response = rows.Responses[k];
      if (!step) {
        EXPECT_NE(of.Overshoot.Gap, StepGap::None);
        EXPECT_NE(of.Delay.Gap, StepGap::None);
        continue;
      }
      const std::size_t jump = first + step->Before + 1;
      double from = Standing(slow, slow.Responses[k], 1.0);
      double to = Standing(slow, slow.Responses[k], 1.5);
      if (rows.Command[jump] < rows.Command[jump - 1]) std::swap(from, to);
      const Truth truth = MeasurePlainly(rows, response, jump, first + step->End, from, to);
      SCOPED_TRACE(measures[k].Channel->Name());
      const auto check = [&](const char* what, const StepFigure& figure, double is, double most) {
        if (figure.Gap != StepGap::None) return;
        EXPECT_NEAR(figure.Value, is, most) << what;
      };
      // The rows are a step apart themselves.
      const double apart = screen.Time[1] - screen.Time[0] + loop.Model().Solver().Step();
      check("Overshoot", of.Overshoot, truth.Overshoot, 1.0);
      check("Rise", of.Rise, truth.Rise, apart);
      check("Settling", of.Settling, truth.Settling, apart);
      check("Delay", of.Delay, truth.Delay, apart);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Models, StepScreens, testing::ValuesIn(ModelNames()));

}  // namespace
}  // namespace torvane
