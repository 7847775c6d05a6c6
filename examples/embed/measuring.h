#pragma once

#include <torvane/core/model.h>
#include <torvane/core/run_loop.h>
#include <torvane/core/text.h>
#include <torvane/instruments/analyser/margins.h>
#include <torvane/instruments/fft/fft_analyser.h>

#include <iostream>
#include <stdexcept>
#include <string>

/// Measures the response of one signal to another with the model's FFT analyser, sampled every so
/// many seconds, and reads its margins.
inline torvane::Margins MeasureMargins(torvane::ZelModel& model, const std::string& input,
                                       const std::string& output, double sampleTime) {
  const auto& analysers = model.Bench().Instruments(torvane::InstrumentKind::FftAnalyser);
  auto& analyser = dynamic_cast<torvane::ZelXfer&>(*analysers.at(0));
  torvane::FftSetup setup = analyser.Setup();
  setup.TSample = sampleTime;
  if (!analyser.SetInput(input) || !analyser.SetOutput(output) || !analyser.Apply(setup)) {
    throw std::runtime_error("the analyser does not take its settings");
  }
  analyser.Run();
  while (analyser.Measuring()) torvane::RunPass(model);
  // Slot 0 is the current measurement. A response that does not begin at unity is an open loop's.
  return torvane::MarginReader().Read(analyser, 0, torvane::ReadAs::Auto);
}

/// "Phase margin 52.1 deg at 61.3 Hz" and the like, a line each.
inline void Print(const torvane::Margins& margins) {
  for (const auto& [hz, degrees] : margins.PhaseMargins) {
    std::cout << "Phase margin " << torvane::FormatShortest(degrees) << " deg at "
              << torvane::FormatShortest(hz) << " Hz\n";
  }
  for (const auto& [hz, decibels] : margins.GainMargins) {
    std::cout << "Gain margin " << torvane::FormatShortest(decibels) << " dB at "
              << torvane::FormatShortest(hz) << " Hz\n";
  }
  for (const std::string& reason : margins.Missing) std::cout << "Missing: " << reason << '\n';
}
