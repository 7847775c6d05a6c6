#include <cmath>

#include "fuzzing.h"
#include "instruments/analyser/margins.h"
#include "instruments/analyser/response_csv.h"

// Feeds the reader of responses. Whatever a file says, either a curve comes of it that rises in
// frequency and from which finite margins are read, or a fault.

namespace {

using namespace torvane;
using fuzz::Require;

void RequireFinite(const std::vector<Margins::Reading>& readings) {
  for (const Margins::Reading& reading : readings) {
    Require(std::isfinite(reading.Hz) && std::isfinite(reading.Value), "a margin is not finite");
  }
}

void ReadMargins(ResponseCurve curve, ReadAs as) {
  if (as == ReadAs::Unity) OpenFromClosed(curve);
  UnwrapPhase(curve);
  const Margins margins = FindMargins(curve, as);
  RequireFinite(margins.PhaseMargins);
  RequireFinite(margins.GainMargins);
  if (margins.Peaking) RequireFinite({*margins.Peaking});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const ResponseText response = ParseResponse(fuzz::AsText(data, size));
  Require(response.Fault.empty() != response.Responses.empty(), "neither a curve nor a fault");
  for (const NamedResponse& read : response.Responses) {
    double before = 0.0;
    for (const ResponsePoint& point : read.Curve) {
      Require(point.Hz > before, "the frequencies do not rise");
      before = point.Hz;
    }
    for (const ReadAs as : {ReadAs::Auto, ReadAs::Open, ReadAs::Closed, ReadAs::Unity}) {
      ReadMargins(read.Curve, as);
    }
  }
  return 0;
}
