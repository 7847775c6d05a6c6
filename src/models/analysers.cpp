#include "models/analysers.h"

namespace torvane {

Analysers::Analysers(ZelBenchTop& bench, int maxOrder, const Measurement& measurement)
    : Fft(bench, maxOrder), Swept(bench, "MainSweptDSA") {
  Fft.SetOrder(measurement.Order);
  Fft.SetTSample(measurement.TSample);
  Fft.SetTStartDelay(measurement.RestTime);
  Fft.SetTEndDelay(measurement.RestTime);
  Fft.SetAmplitude(measurement.Amplitude);
  Fft.AutoRange();

  Swept.SetTSample(measurement.SweepTSample);
  Swept.SetStartFreq(measurement.SweepFrom);
  Swept.SetEndFreq(measurement.SweepTo);
  Swept.ApplySweepRange();
  Swept.SetSettleTime(measurement.RestTime);
  Swept.SetMeasurementTime(1.0);
  Swept.SetAmplitude(measurement.Amplitude);
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

void Analysers::AddVelocitySetups() {
  AddSetup("Closed", "vC", "vF");
  AddSetup("Open", "vE", "vF");
}

}  // namespace torvane
