#pragma once

#include <functional>
#include <string>

#include "instruments/fft/fft_analyser.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "library/d_controller.h"

namespace torvane {

/// A model's sweep before the user says otherwise: up to a frequency (Hz), ticked every TSample
/// seconds, with SettleTime seconds of rest at each point. The amplitude, in the command's unit,
/// stays small enough that no limit is met.
struct Sweep {
  double To = 1000.0;
  double TSample = 1e-5;
  double SettleTime = 0.1;
  double Amplitude = 10.0;
};

/// The two analysers of a model: FFT and, hidden until it is asked for, swept sine.
struct Analysers {
  /// maxOrder: largest record of the FFT analyser, as a power of two.
  Analysers(ZelBenchTop& bench, int maxOrder, const Sweep& sweep = {});

  /// Offers a pair of signals on both; the first one offered is chosen.
  void AddSetup(const std::string& name, const std::string& input, const std::string& output,
                double phaseAdd = 0.0);

  /// The two responses that every velocity loop is asked for. The loop samples by that clock and at
  /// the given period, or is continuous; it is linear while its sensor's resolution, if it has one,
  /// is not used.
  void AddVelocitySetups(const ControllerClock* clock = nullptr,
                         const Constant* sampleTime = nullptr, Constant* useRes = nullptr);

  /// Names the model's loop, whose excitation is the sweep's and whose samples, if it has any, the
  /// clock's.
  void SetLoop(const ControllerClock* clock, const std::function<ModelLoop()>& loop);

  /// Those of three filters side by side on the signal of that name, which is sampled by that clock
  /// and at the given period, or continuous.
  void AddFilterSetups(const std::string& input, const ControllerClock* clock = nullptr,
                       const Constant* sampleTime = nullptr);

  ZelXfer Fft;
  ZelSweptDSA Swept;
};

}  // namespace torvane
