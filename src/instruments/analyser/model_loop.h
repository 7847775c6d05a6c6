#pragma once

#include <string>
#include <vector>

namespace torvane {

class Constant;

/// How the open loop of a model is measured, as its constants stand.
struct ModelLoop {
  /// The loop's error or, where no signal is that, its command; empty without feedback.
  std::string Input;
  std::string Output;  ///< its feedback
  /// The pair is that of the closed loop, whose feedback is its output; the open loop is computed
  /// from it.
  bool FromClosed = false;
  /// Between the loop's samples, seconds; 0 where it is continuous. An analyser that samples when
  /// the loop does measures it as it is.
  double SampleTime = 0.0;

  /// What has to hold meanwhile, so that the pair's ratio is that of the loop: no feed-forward.
  struct Setting {
    Constant* What = nullptr;
    double Value = 0.0;
  };
  std::vector<Setting> Meanwhile = {};
  /// What has to hold while any response of the loop is measured, as of one that is linear: no
  /// sensor's resolution.
  std::vector<Setting> Linear = {};
  /// Of the excitation, in the command's unit: meets no limit, and is well above any resolution.
  double Amplitude = 1.0;
  /// When the loop takes its next sample, simulated seconds; of one that samples.
  double NextSample = 0.0;
  /// Between the samples of a record that measures the loop where it is continuous, seconds.
  double RecordPeriod = 0.00025;
  /// Such a record has 2^RecordOrder samples.
  int RecordOrder = 12;
};

}  // namespace torvane
