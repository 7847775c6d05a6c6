#include "instruments/fft/record_average.h"

#include <cmath>

namespace torvane {

void RecordAverage::Clear(std::size_t bins) {
  sums_.assign(bins, {});
}

void RecordAverage::Add(std::span<const float> re, std::span<const float> im,
                        const ExcitationRecord& reference) {
  for (std::size_t bin = 0; bin < sums_.size(); ++bin) {
    Sums& sums = sums_[bin];
    const double xRe = re[bin];
    const double xIm = im[bin];
    const double rRe = reference.Real(bin);
    const double rIm = reference.Imaginary(bin);
    sums.CrossRe += xRe * rRe + xIm * rIm;
    sums.CrossIm += xIm * rRe - xRe * rIm;
    sums.Power += xRe * xRe + xIm * xIm;
  }
}

void RecordAverage::TakeResponse(const std::vector<double>& referencePower, int records,
                                 std::span<float> re, std::span<float> im,
                                 std::vector<float>& coherences) const {
  coherences.resize(sums_.size());
  for (std::size_t bin = 0; bin < sums_.size(); ++bin) {
    const Sums& sums = sums_[bin];
    const double power = referencePower[bin];
    const double scale = power > 0.0 ? 1.0 / std::sqrt(records * power) : 0.0;
    re[bin] = static_cast<float>(sums.CrossRe * scale);
    im[bin] = static_cast<float>(sums.CrossIm * scale);
    const double cross = sums.CrossRe * sums.CrossRe + sums.CrossIm * sums.CrossIm;
    const double whole = power * sums.Power;
    coherences[bin] = static_cast<float>(whole > 0.0 ? std::min(1.0, cross / whole) : 0.0);
  }
}

void RecordAverage::TakePower(int records, std::span<float> re, std::span<float> im) const {
  for (std::size_t bin = 0; bin < sums_.size(); ++bin) {
    re[bin] = static_cast<float>(std::sqrt(sums_[bin].Power / records));
    im[bin] = 0.0F;
  }
}

}  // namespace torvane
