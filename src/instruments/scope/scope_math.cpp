#include "instruments/scope/scope_math.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>

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
  for (std::size_t i = range.Begin; i < range.End; ++i) {
    values.push_back(channel.Signal().Multiplier() * samples[i]);
  }
  return values;
}

// A signal's trace over the whole screen.
std::vector<double> Trace(const ZelScope& scope, const ScopeScreen& screen,
                          const Variable& signal) {
  for (std::size_t k = 0; k < screen.Values.size(); ++k) {
    const ZelChannel& channel = *scope.Channels()[k];
    if (&channel.Signal() == &signal)
      return Shown(channel, screen.Values[k], {0, screen.Time.size()});
  }
  return {};
}

}  // namespace

ResponseMeasures MeasureResponse(const ZelScope& scope, const ScopeScreen& screen,
                                 const Variable& command, const Variable& response) {
  const std::vector<double> times =
      Shown(scope.TimeChannel(), screen.Time, {0, screen.Time.size()});
  const std::vector<double> wanted = Trace(scope, screen, command);
  const std::vector<double> is = Trace(scope, screen, response);
  ResponseMeasures measures;
  measures.Step = MeasureStep(times, wanted, is);
  std::vector<double> error;
  std::transform(wanted.begin(), wanted.end(), is.begin(), std::back_inserter(error), std::minus());
  if (const auto of = MeasureTrace(error)) measures.RmsError = of->Rms;
  return measures;
}

std::vector<ChannelMeasures> MeasureScreen(const ZelScope& scope, const ScopeScreen& screen,
                                           const ScreenPixels& pixels) {
  const Range range = MeasuredRange(scope, screen, pixels);
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
    of.Trace = MeasureTrace(values);
    // A command does not respond to itself.
    if (&channel != &scope.Trigger().Source()) of.Step = MeasureStep(times, command, values);
  }
  return measures;
}

}  // namespace torvane
