#include "kit/analysers.h"

#include "core/constant.h"

namespace torvane {

Analysers::Analysers(ZelBenchTop& bench, int maxOrder, const Sweep& sweep)
    : Fft(bench, maxOrder), Swept(bench, "MainSweptDSA") {
  // To note each change for undo would be most of the work of building a model.
  bench.History().Suspend();
  Swept.SetTSample(sweep.TSample);
  Swept.SetStartFreq(5.0);
  Swept.SetEndFreq(sweep.To);
  Swept.ApplySweepRange();
  Swept.SetSettleTime(sweep.SettleTime);
  Swept.SetMeasurementTime(1.0);
  Swept.SetAmplitude(sweep.Amplitude);
  bench.History().Resume();
}

void Analysers::AddSetup(const std::string& name, const std::string& input,
                         const std::string& output, double phaseAdd) {
  Fft.AddSetup(name, input, output, phaseAdd);
  Swept.AddSetup(name, input, output, phaseAdd);
  if (Fft.Setups().size() == 1) {
    Fft.SelectSetup(0);
    Swept.SelectSetup(0);
  }
}

void Analysers::AddVelocitySetups(const ControllerClock* clock, const Constant* sampleTime,
                                  Constant* useRes) {
  AddSetup("Closed", "vC", "vF");
  AddSetup("Open", "vE", "vF");
  SetLoop(clock, [=] {
    ModelLoop loop{"vE", "vF", false, sampleTime ? sampleTime->Value() : 0.0};
    if (useRes) loop.Linear = {{useRes, 0.0}};
    return loop;
  });
}

void Analysers::SetLoop(const ControllerClock* clock, const std::function<ModelLoop()>& loop) {
  const auto excited = [loop, clock, amplitude = Swept.Amplitude()] {
    ModelLoop named = loop();
    named.Amplitude = amplitude;
    if (clock) named.NextSample = clock->NextSample();
    return named;
  };
  Fft.SetLoop(excited);
  Swept.SetLoop(excited);
}

void Analysers::AddFilterSetups(const std::string& input, const ControllerClock* clock,
                                const Constant* sampleTime) {
  SetLoop(clock, [=] { return ModelLoop{"", "", false, sampleTime ? sampleTime->Value() : 0.0}; });
  AddSetup("1-Pole", input, "vLP1");
  AddSetup("2-Pole", input, "vLP2");
  AddSetup("Notch", input, "vNotch");
}

}  // namespace torvane
