#pragma once

#include "instruments/analyser/analyser.h"
#include "linear/model_theory.h"

namespace torvane {

/// Keeps what theory says of an analyser's pair of channels as its view, its sample time and the
/// model have it.
class AnalyserTheory {
 public:
  /// The analyser must outlive this.
  explicit AnalyserTheory(FrequencyAnalyser& analyser) : analyser_(analyser) {}

  /// Its view asks for it.
  bool Wanted() const { return analyser_.ShowsTheory() && analyser_.Input() && analyser_.Output(); }

  /// Sets the analyser's theory anew where something has changed; true when it has.
  bool Follow(const ModelTheory& model);
  /// Tells the analyser's window, when there is one.
  void Redraw() const;

 private:
  /// What it depends on beside the pair, with which the analyser drops it.
  struct Basis {
    int Revision = 0;
    double From = 0.0;  ///< Hz
    double To = 0.0;
    double SampleTime = 0.0;

    bool operator==(const Basis&) const = default;
  };

  Basis BasisNow(const ModelTheory& model) const;
  PairTheory Find(const ModelTheory& model) const;

  FrequencyAnalyser& analyser_;
  Basis basis_;
};

}  // namespace torvane
