#include "instruments/analyser/trace_origin.h"

#include <algorithm>
#include <cmath>

#include "core/bench.h"
#include "core/constant.h"
#include "core/text.h"

namespace torvane {

namespace {

constexpr double Micro = 1e-6;
constexpr double Milli = 1e-3;
constexpr double Tenth = 0.1;

// "70 us", "2.5 ms", "1.25 s"
std::string TimeText(double seconds) {
  const double size = std::abs(seconds);
  if (size == 0.0 || size >= Tenth) return FormatEdit(seconds) + " s";
  if (size >= Milli) return FormatEdit(seconds / Milli) + " ms";
  return FormatEdit(seconds / Micro) + " us";
}

}  // namespace

TraceOrigin OriginNow(const ZelBenchTop& bench) {
  TraceOrigin origin{bench.Time(), {}};
  for (const Constant* constant : bench.Constants()) {
    origin.Constants.emplace_back(constant->Name(), constant->DisplayText());
  }
  return origin;
}

std::string OriginText(const TraceOrigin& one, const std::vector<const TraceOrigin*>& all) {
  std::string text;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  const auto differs = [&](const auto& isOther) { return std::ranges::any_of(all, isOther); };
  if (differs([&](const TraceOrigin* other) { return other->Time != one.Time; }))
    add("at " + TimeText(one.Time));
  for (std::size_t i = 0; i < one.Constants.size(); ++i) {
    const auto& [name, value] = one.Constants[i];
    const bool isTold = differs([&](const TraceOrigin* other) {
      return i < other->Constants.size() && other->Constants[i] != one.Constants[i];
    });
    if (isTold) add(std::string(name).append(" = ").append(value));
  }
  return text;
}

std::string KeptOriginText(const TraceOrigin& kept, const TraceOrigin& now) {
  constexpr int mostTold = 3;  // a legend's entry stands on one row
  std::string text;
  int count = 0;
  for (const auto& [name, value] : kept.Constants) {
    const auto other =
        std::ranges::find(now.Constants, name, [](const auto& c) { return c.first; });
    if (other == now.Constants.end() || other->second == value || ++count > mostTold) continue;
    text.append(text.empty() ? "" : ", ").append(name).append(" = ").append(value);
    text.append(" (now ").append(other->second).append(")");
  }
  if (count > mostTold) text += " and " + std::to_string(count - mostTold) + " more";
  return text;
}

}  // namespace torvane
