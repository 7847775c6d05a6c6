#include "linear/root_locus.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/constant.h"
#include "core/csv.h"
#include "core/text.h"
#include "linear/linear_fault.h"

namespace torvane {

namespace {

constexpr double Decade = 10.0;
constexpr double LeastShare = 1e-3;  // of a limit, where a locus from 0 begins

// The ends of the range, from that nearest to 0; both of one sign.
std::pair<double, double> RangeOf(const Constant& constant) {
  const double value = constant.Value();
  const double sign = value < 0.0 || (value == 0.0 && constant.Upper() <= 0.0) ? -1.0 : 1.0;
  const double limit = sign > 0.0 ? constant.Upper() : -constant.Lower();
  const double least = std::max(0.0, sign > 0.0 ? constant.Lower() : -constant.Upper());
  if (value == 0.0) return {sign * std::max(least, LeastShare * limit), sign * limit};
  const double size = std::abs(value);
  return {sign * std::max(least, size / Decade), sign * std::min(limit, size * Decade)};
}

}  // namespace

bool RootLocus::CanVary(const Constant& constant) {
  return !constant.IsList() && constant.Lower() < constant.Upper();
}

RootLocus::RootLocus(const ModelTheory& model, const Constant& constant)
    : model_(model),
      constant_(constant),
      name_(constant.Name()),
      setUp_(model.SetUp(name_)),
      poles_(Values) {
  const auto [near, far] = RangeOf(constant);
  for (int i = 0; i < Values; ++i) {
    values_.push_back(near * std::pow(far / near, i / (Values - 1.0)));
  }
  if (near < 0.0) std::ranges::reverse(values_);
  order_.resize(values_.size());
  std::iota(order_.begin(), order_.end(), 0);
  const double from = constant.Value();
  std::ranges::stable_sort(order_, {}, [&](std::size_t i) {
    return from == 0.0 ? std::abs(values_[i]) : std::abs(std::log(values_[i] / from));
  });
}

bool RootLocus::IsCurrent() const {
  constexpr double Rounding = 1e-9;
  const double value = constant_.Value();
  const double room = Rounding * std::max(std::abs(From()), std::abs(To()));
  return (value == 0.0 || (value >= From() - room && value <= To() + room)) &&
         model_.SetUp(name_) == setUp_;
}

void RootLocus::Go() {
  if (Done()) return;
  const std::size_t at = order_[found_++];
  try {
    for (const Root& pole : model_.With(name_, values_[at]).Poles()) {
      poles_[at].push_back(pole.Value);
    }
  } catch (const LinearFault&) {
    poles_[at].clear();
  }
}

// Each pole goes on to the nearest of the next value's that no other one has taken.
std::vector<std::vector<RootLocus::Complex>> RootLocus::Ways() const {
  std::vector<std::vector<Complex>> ways;
  std::size_t first = 0;  // of those that go on
  for (const std::vector<Complex>& next : poles_) {
    if (next.empty()) continue;
    if (ways.size() - first != next.size()) {
      first = ways.size();
      for (const Complex pole : next) ways.push_back({pole});
      continue;
    }
    std::vector<Complex> left = next;
    for (std::size_t way = first; way < ways.size(); ++way) {
      const Complex from = ways[way].back();
      const auto nearest =
          std::ranges::min_element(left, {}, [&](Complex pole) { return std::abs(pole - from); });
      ways[way].push_back(*nearest);
      left.erase(nearest);
    }
  }
  return ways;
}

std::string RootLocus::Csv() const {
  std::string text = CsvLine({name_, "Real", "Imaginary"});
  for (std::size_t i = 0; i < values_.size(); ++i) {
    for (const Complex pole : poles_[i]) {
      text += CsvLine({FormatShortest(values_[i]), FormatShortest(pole.real()),
                       FormatShortest(pole.imag() + 0.0)});
    }
  }
  return text;
}

}  // namespace torvane
