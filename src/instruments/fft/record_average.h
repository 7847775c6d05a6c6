#pragma once

#include <span>
#include <vector>

#include "instruments/fft/excitation_record.h"

namespace torvane {

/// Sums of a signal's spectra X over several records, by bin, with R the excitation's:
///   X R*, and |X|^2.
/// What the excitation has not caused averages out of X R*, so the ratio of two signals' sums is
/// the response between them even in a loop that noise goes round, and |sum X R*|^2 / (sum |R|^2
/// sum |X|^2) is the share of the signal that the excitation explains.
class RecordAverage {
 public:
  void Clear(std::size_t bins);
  void Add(std::span<const float> re, std::span<const float> im, const ExcitationRecord& reference);

  /// Puts sum X R* / sqrt(records sum |R|^2) in place of the spectrum, and the shares explained.
  void TakeResponse(const std::vector<double>& referencePower, int records, std::span<float> re,
                    std::span<float> im, std::vector<float>& coherences) const;
  /// Puts the root of the mean power in place of the spectrum; a mean power has no phase, it reads
  /// 0.
  void TakePower(int records, std::span<float> re, std::span<float> im) const;

 private:
  struct Sums {
    double CrossRe = 0.0;
    double CrossIm = 0.0;
    double Power = 0.0;
  };
  std::vector<Sums> sums_;
};

}  // namespace torvane
