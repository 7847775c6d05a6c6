#pragma once

#include <vector>

#include "instruments/fft/fft.h"

namespace torvane {

/// What the FFT analyser excited the model with, sample by sample, and its spectrum: averages are
/// taken against it, and it tells which bins have been excited at all.
class ExcitationRecord {
 public:
  /// The transform must outlive the record.
  explicit ExcitationRecord(const Fft& fft) : fft_(fft) {}

  void Sample(int index, double value);
  /// Transforms 2^order samples.
  void Transform(int order);

  /// Of a bin of the spectrum.
  float Real(std::size_t bin) const { return re_[bin]; }
  float Imaginary(std::size_t bin) const { return im_[bin]; }

  /// Adds each bin's power, of the spectrum of 2^order samples, to `sums`.
  void AddPowerTo(std::vector<double>& sums) const;

 private:
  void MakeRoom();  ///< at the first use: most models are built and gone without a record

  const Fft& fft_;
  std::vector<float> re_;
  std::vector<float> im_;
};

/// Marks the bins whose power is no more than 40 dB below the mean of the bins from 1 to the middle
/// one. The smoothing filter takes 50 dB off at half the sample rate.
void MarkExcited(const std::vector<double>& powers, std::vector<bool>& excited);

}  // namespace torvane
