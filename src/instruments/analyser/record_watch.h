#pragma once

#include <string>
#include <utility>
#include <vector>

namespace torvane {

class Constant;
class Instrument;
class ZelBenchTop;

/// Watches a model while a measurement is taken of it, for what makes the measurement doubtful: it
/// is to be of one model that nothing moves but its excitation.
class RecordWatch {
 public:
  RecordWatch(const ZelBenchTop& bench, const Instrument& own) : bench_(bench), own_(own) {}

  /// A measurement begins, of the model as it is now.
  void Begin();
  /// Sees whether constants and generators are what they were.
  void SeeModel();
  /// Sees who excites the model at this moment. Of two analysers that measure, the FFT analyser
  /// does.
  void SeeExcitation(double now);

  /// What was seen since it began, a sentence each.
  std::vector<std::string> Doubts() const;

 private:
  std::string GeneratorText(const Instrument& generator) const;

  const ZelBenchTop& bench_;
  const Instrument& own_;
  std::vector<std::pair<const Constant*, double>> constants_;
  std::vector<std::pair<const Instrument*, std::string>> generators_;
  std::vector<std::string> changed_;  ///< their names
  bool otherExcites_ = false;
  bool meterExcites_ = false;
};

}  // namespace torvane
