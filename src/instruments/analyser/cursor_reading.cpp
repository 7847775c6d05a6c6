#include "instruments/analyser/cursor_reading.h"

#include <cmath>

namespace torvane {

namespace {

std::optional<double> Change(const std::optional<double>& from, const std::optional<double>& to) {
  if (!from || !to) return std::nullopt;
  return *to - *from;
}

}  // namespace

ResponseCursorReading ReadResponseCursors(const FrequencyAnalyser& analyser, int plotWidth) {
  ResponseCursorReading reading;
  const int slot = analyser.CursorSlot();
  const bool shown = analyser.TraceAt(slot).Shown;
  for (int cursor = 0; cursor < static_cast<int>(analyser.Cursors()); ++cursor) {
    CursorPoint point{
        analyser.AxisFrequency(static_cast<double>(analyser.CursorPixel(cursor)) / plotWidth),
        {},
        {},
        {}};
    if (shown) {
      point.Gain = analyser.GainRead(slot, point.Hz);
      point.Phase = analyser.PhaseRead(slot, point.Hz);
      point.Delay = analyser.DelayRead(slot, point.Hz);
    }
    reading.Points.push_back(point);
  }
  if (reading.Points.size() < 2) return reading;
  const CursorPoint& one = reading.Points[0];
  const CursorPoint& two = reading.Points[1];
  reading.Difference = {two.Hz - one.Hz, Change(one.Gain, two.Gain), Change(one.Phase, two.Phase),
                        Change(one.Delay, two.Delay)};
  if (reading.Difference->Gain && two.Hz != one.Hz) {
    reading.Slope = *reading.Difference->Gain / std::log10(two.Hz / one.Hz);
  }
  return reading;
}

}  // namespace torvane
