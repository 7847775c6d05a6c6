#include "instruments/fft/excitation_record.h"

#include <numeric>

namespace torvane {

namespace {

constexpr double LeastShare = 1e-4;  // 40 dB

}  // namespace

void ExcitationRecord::MakeRoom() {
  if (!re_.empty()) [[likely]] {
    return;
  }
  re_.resize(std::size_t{1} << fft_.MaxOrder());
  im_.resize(re_.size());
}

void ExcitationRecord::Sample(int index, double value) {
  MakeRoom();
  re_[static_cast<std::size_t>(index)] = static_cast<float>(value);
  im_[static_cast<std::size_t>(index)] = 0.0F;
}

void ExcitationRecord::Transform(int order) {
  MakeRoom();
  fft_.Transform(re_.data(), im_.data(), order);
}

void ExcitationRecord::AddPowerTo(std::vector<double>& sums) const {
  for (std::size_t bin = 0; bin < sums.size(); ++bin) {
    const double re = re_[bin];
    const double im = im_[bin];
    sums[bin] += re * re + im * im;
  }
}

void MarkExcited(const std::vector<double>& powers, std::vector<bool>& excited) {
  const std::size_t middle = powers.size() / 2;
  const double sum = std::accumulate(powers.begin() + 1,
                                     powers.begin() + static_cast<std::ptrdiff_t>(middle) + 1, 0.0);
  const double least = LeastShare * sum / static_cast<double>(middle);
  excited.resize(middle + 1);
  for (std::size_t bin = 0; bin <= middle; ++bin) excited[bin] = sum > 0.0 && powers[bin] >= least;
}

}  // namespace torvane
