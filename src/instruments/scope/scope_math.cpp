#include "instruments/scope/scope_math.h"

#include <algorithm>

#include "core/solver.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope_cursors.h"

namespace torvane {

namespace {

// Points of the screen, the end one past the last; both 0 when there is nothing to measure.
struct Range {
  std::size_t Begin = 0;
  std::size_t End = 0;
};

Range MeasuredRange(const ZelScope& scope, const ScopeScreen& screen, const ScreenPixels& pixels) {
  if (scope.Cursors().Mode < 2 || scope.XYMode()) return {0, screen.Time.size()};
  const auto points = PointsAtCursors(scope, screen, pixels);
  if (!points) return {};
  return {(*points)[0], (*points)[1] + 1};
}

template <typename Sample>
std::vector<double> Shown(const ZelChannel& channel, const std::vector<Sample>& samples,
                          Range range) {
  std::vector<double> values;
  if (samples.empty()) return values;  // loaded traces have it not
  for (std::size_t i = range.Begin; i < range.End; ++i) {
    values.push_back(channel.Signal().Multiplier() * samples[i]);
  }
  return values;
}

// When the command jumped between two points. A generator's jump shows at the end of the solver's
// step that it falls into; without one that tells, the jump was at any of the steps' ends in
// between.
JumpTime JumpBetween(const ZelBenchTop& bench, double from, double to) {
  const double step = bench.Solver() ? bench.Solver()->Step() : 0.0;
  const double unsure = std::max(0.0, to - from - step);
  const JumpTime between{to - 0.5 * unsure, unsure, step};
  std::optional<double> jump;
  for (const Instrument* instrument : bench.Instruments(InstrumentKind::WaveGenerator)) {
    const auto* wave = dynamic_cast<const ZelWave*>(instrument);
    const auto at = wave ? wave->JumpIn(from, to) : std::nullopt;
    if (at && jump && *at != *jump) return between;
    if (at) jump = at;
  }
  if (!jump || !(step > 0.0)) return between;
  constexpr double RoundingError = 1e-9;  // of a step
  return {std::min(to, from + std::ceil((*jump - from) / step - RoundingError) * step), 0.0, step};
}

StepMeasures MeasureStep(const ZelScope& scope, const StepTraces& traces) {
  const auto stretch = FindStep(traces.Command);
  if (!stretch) return StepMeasures::Without(StepGap::NoStep);
  const double unit = scope.TimeChannel().Signal().Multiplier();
  const double from = traces.Times[stretch->Before] / unit;
  const double to = traces.Times[stretch->Before + 1] / unit;
  const JumpTime jump = JumpBetween(scope.Bench(), from, to);
  return torvane::MeasureStep(traces, *stretch,
                              {unit * jump.At, unit * jump.Resolution, unit * jump.SolverStep});
}

std::vector<ChannelMeasures> Measure(const ZelScope& scope, const ScopeScreen& screen,
                                     Range range) {
  const auto& channels = scope.Channels();
  // A screen that has never been copied has not even empty traces.
  if (screen.Values.size() != channels.size()) return {};
  const auto source = std::find_if(channels.begin(), channels.end(), [&](const auto& channel) {
    return channel.get() == &scope.Trigger().Source();
  });
  std::vector<double> times;
  std::vector<double> command;
  if (source != channels.end()) {
    const auto k = static_cast<std::size_t>(source - channels.begin());
    times = Shown(scope.TimeChannel(), screen.Time, range);
    command = Shown(**source, screen.Values[k], range);
  }
  std::vector<ChannelMeasures> measures;
  for (const std::size_t k : scope.DisplayedChannels()) {
    const ZelChannel& channel = *channels[k];
    const std::vector<double> values = Shown(channel, screen.Values[k], range);
    ChannelMeasures& of = measures.emplace_back();
    of.Channel = &channel;
    if (values.size() < times.size()) continue;
    of.Trace = MeasureTrace(values);
    // A command does not respond to itself.
    if (&channel == &scope.Trigger().Source()) continue;
    const bool sameUnit = channel.Signal().Unit() == scope.Trigger().Source().Signal().Unit();
    of.Step = MeasureStep(scope, {times, command, values, sameUnit});
  }
  return measures;
}

}  // namespace

std::vector<ChannelMeasures> MeasureScreen(const ZelScope& scope, const ScopeScreen& screen,
                                           const ScreenPixels& pixels) {
  return Measure(scope, screen, MeasuredRange(scope, screen, pixels));
}

std::vector<ChannelMeasures> MeasureWholeScreen(const ZelScope& scope, const ScopeScreen& screen) {
  return Measure(scope, screen, {0, screen.Time.size()});
}

}  // namespace torvane
