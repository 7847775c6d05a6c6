#include "linear/analyser_theory.h"

#include <algorithm>

#include "linear/linear_fault.h"
#include "linear/theory.h"

namespace torvane {

namespace {

// What margins are read from, Hz, whatever part of it the axis shows; and where pictures end.
constexpr double MarginsFrom = 0.1;
constexpr double MarginsTo = 1e4;  // of a continuous loop
constexpr double AxisFrom = 1e-3;
constexpr double AxisTo = 1e6;
constexpr int PointsPerDecade = 150;  // peaks are read between them to four digits

}  // namespace

AnalyserTheory::Basis AnalyserTheory::BasisNow(const ModelTheory& model) const {
  Basis basis{model.Revision(), std::clamp(analyser_.FreqMin(), AxisFrom, MarginsFrom),
              std::clamp(analyser_.FreqMax(), MarginsTo, AxisTo), analyser_.SampleTime()};
  const LinearModel* const linear = model.Linear();
  if (!linear || !linear->Sampled()) return basis;
  const double half = 0.5 / linear->System().Ts;
  const bool together = SampledBy(*linear, basis.SampleTime) == ReadSignals::AtItsSamples;
  basis.To = together ? half : std::clamp(analyser_.FreqMax(), half, 0.5 / linear->Step());
  basis.From = std::min(basis.From, 0.1 * half);
  return basis;
}

bool AnalyserTheory::Follow(const ModelTheory& model) {
  const Basis now = BasisNow(model);
  if (now == basis_ && analyser_.TheoryKnown()) return false;
  basis_ = now;
  analyser_.SetTheory(Find(model));
  return true;
}

void AnalyserTheory::Redraw() const {
  if (InstrumentView* const view = analyser_.Instrument::View()) view->Redraw();
}

PairTheory AnalyserTheory::Find(const ModelTheory& model) const {
  PairTheory theory;
  const LinearModel* const linear = model.Linear();
  if (!linear) {
    theory.Fault = model.Fault();
    return theory;
  }
  try {
    const TheoryPair pair(*linear, analyser_.Input()->Name(), analyser_.Output()->Name());
    const double from = std::min(basis_.From, pair.LowestHz());
    theory.Curve = pair.At(pair.Frequencies(from, basis_.To, PointsPerDecade),
                           SampledBy(*linear, basis_.SampleTime));
    if (linear->Sampled()) theory.AccurateUpTo = 0.25 / linear->System().Ts;
    for (const std::string& note : linear->Notes) theory.Notes.push_back(note + ".");
  } catch (const LinearFault& fault) {
    theory.Fault = fault.what();
  }
  return theory;
}

}  // namespace torvane
