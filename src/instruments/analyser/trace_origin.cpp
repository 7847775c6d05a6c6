#include "instruments/analyser/trace_origin.h"

#include <algorithm>

#include "core/bench.h"
#include "core/constant.h"
#include "core/text.h"

namespace torvane {

TraceOrigin OriginNow(const ZelBenchTop& bench) {
  TraceOrigin origin{bench.Time(), {}};
  for (const Constant* constant : bench.Constants()) {
    origin.Constants.emplace_back(constant->Name(), constant->DisplayText());
  }
  return origin;
}

std::string OriginText(const TraceOrigin& one, const std::vector<const TraceOrigin*>& all) {
  std::string text = "at " + FormatEdit(one.Time) + " s";
  for (std::size_t i = 0; i < one.Constants.size(); ++i) {
    const bool differs = std::any_of(all.begin(), all.end(), [&](const TraceOrigin* other) {
      return i < other->Constants.size() && other->Constants[i] != one.Constants[i];
    });
    if (differs) text += ", " + one.Constants[i].first + " = " + one.Constants[i].second;
  }
  return text;
}

}  // namespace torvane
