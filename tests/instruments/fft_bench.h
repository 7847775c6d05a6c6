#pragma once

#include <functional>

#include "instruments/fft/fft_analyser.h"
#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane::test {

/// Two signals on a bench, and an analyser of records of up to 16 samples that is served by hand.
/// Times are multiples of 1/64 s, exact in binary; two samples' time passes before a record.
struct FftBench {
  FftBench() {
    Xfer.SetTSample(Period);
    Xfer.SetTStartDelay(2 * Period);
    Xfer.SetTEndDelay(0.0);
    Xfer.SetBypassFilter(true);
  }

  void Step(double input, double output) {
    In.Value = input;
    Out.Value = output;
    Xfer.Service(Model.Bench().Time());
    Model.Bench().AdvanceTime(Period);
  }
  /// The samples from `first` on that come before `end`: sample n is the signal at n.
  void Steps(int first, int end, const std::function<double(int)>& input,
             const std::function<double(int)>& output) {
    for (int n = first; n < end; ++n) Step(input(n), output(n));
  }
  /// Takes a whole record.
  void TakeRecord(const std::function<double(int)>& input,
                  const std::function<double(int)>& output) {
    Xfer.Run();
    for (int n = -2; Xfer.Measuring(); ++n) Step(input(n), output(n));
  }

  static double Zero(int /*n*/) { return 0.0; }
  static double One(int /*n*/) { return 1.0; }
  static double Impulse(int n) { return n == 0 ? 1.0 : 0.0; }
  static std::function<double(int)> ImpulseAt(int at, double height = 1.0) {
    return [=](int n) { return n == at ? height : 0.0; };
  }

  static constexpr double Period = 1.0 / 64.0;

  Recorder Reports;
  BareModel Model{1.0 / 1024.0};
  Variable In{Model.Bench(), "In", "volts"};
  Variable Hidden{Model.Bench(), "Hidden", "", {}, Visibility::Internal};
  Variable Out{Model.Bench(), "Out", "", {.Multiplier = 2.0}};
  ZelXfer Xfer{Model.Bench(), 4};
};

}  // namespace torvane::test
