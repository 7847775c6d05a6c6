#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "instruments/analyser/margins.h"
#include "instruments/analyser/model_loop.h"
#include "instruments/analyser/response_curve.h"
#include "linear/linear_model.h"

namespace torvane {

class ZelModel;

/// How signals are read of a sampled loop; of a continuous one there is no difference.
enum class ReadSignals {
  EveryStep,    ///< as a sweep does that samples every step of the solver
  AtItsSamples  ///< once a sample of the loop, whose command is held as long
};

/// How an analyser reads signals whose samples are so many seconds apart: with the loop, when that
/// is the loop's sample time too.
ReadSignals SampledBy(const LinearModel& model, double sampleTime);

/// A pair of signals in a linear model. A signal that the model does not have, or that nothing in
/// its command reaches, is a LinearFault.
class TheoryPair {
 public:
  TheoryPair(const LinearModel& model, const std::string& input, const std::string& output);

  /// Output over input at each frequency, phases in (-270, 90]; a LinearFault of an unstable loop.
  ResponseCurve At(std::span<const double> hz, ReadSignals read) const;

  /// Frequencies from `from` to `to`, evenly spaced on their logarithm and closer about whatever
  /// resonates.
  std::vector<double> Frequencies(double from, double to, int perDecade) const;

  /// Below it nothing of the response changes any more but for integrators, Hz.
  double LowestHz() const;

  /// From the input to the output alone, without what lies outside of them; a LinearFault when
  /// the output follows the command sooner than the input does.
  LinearSystem System() const;

 private:
  std::vector<Root> Roots() const;

  const LinearModel& model_;
  Eigen::Index input_;
  Eigen::Index output_;
  LinearSystem both_;  ///< from the command to input and output
};

/// What theory says of the response between two signals, from the lowest frequency that matters to
/// half the loop's sample frequency. A loop that is not stable has no response: a LinearFault.
Margins TheoryOfClosed(const LinearModel& model, const std::string& input,
                       const std::string& output);

/// What theory says of a model's own open loop.
struct LoopTheory {
  ResponseCurve Open;  ///< unwrapped
  Margins Read;
  std::vector<std::string> Notes;
};

/// The loop that a model names as its own; a LinearFault if there is none.
ModelLoop LoopOf(const ZelModel& model);

/// Of a model of the caller's own, which is not the same afterwards. A model that names no loop, or
/// whose loop is unstable when closed, is a LinearFault.
LoopTheory TheoryOfLoop(ZelModel& model);
/// Of a model that was linearised as the loop asks for it.
LoopTheory TheoryOfLoop(const LinearModel& linear, const ModelLoop& loop);

}  // namespace torvane
