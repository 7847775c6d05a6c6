#include "core/sample_tape.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

#include "core/bench.h"
#include "core/instrument.h"
#include "core/variable.h"

namespace torvane {

namespace {

// Far below what single precision holds, and a record's sum of it.
constexpr double LargestOnTape = 1e30;

}  // namespace

void SampleTape::ListSignals(std::span<const std::byte> loop) {
  double multiplier = 1.0;
  signals_.clear();
  offsets_.clear();
  elsewhere_.clear();
  std::vector<const Variable*> others;
  for (const Variable* variable : bench_.Variables()) {
    if (variable->Internal()) continue;
    multiplier = std::max(multiplier, std::abs(variable->Multiplier()));
    const std::size_t offset = reinterpret_cast<std::uintptr_t>(&variable->Value) -
                               reinterpret_cast<std::uintptr_t>(loop.data());
    if (offset < loop.size()) {
      signals_.push_back(variable);
      offsets_.push_back(offset);
    } else {
      others.push_back(variable);
      elsewhere_.push_back(&variable->Value);
    }
  }
  while (offsets_.size() % PerTurn != 0) {
    signals_.push_back(nullptr);
    offsets_.push_back(offsets_.back());
  }
  signals_.insert(signals_.end(), others.begin(), others.end());
  listed_ = bench_.Variables().size();
  values_.resize(signals_.size() * Most);
  most_ = LargestOnTape / multiplier;
}

bool SampleTape::Begin(int most, std::span<const std::byte> loop, Instrument* only) {
  if (most < 1) return false;
  if (listed_ != bench_.Variables().size()) ListSignals(loop);
  room_ = std::min(most, Most);
  count_ = 0;
  next_ = stop_ = Never;
  readers_.clear();
  if (only) {
    Ask(*only);
  } else {
    for (const InstrumentKind kind : ServicedKinds) {
      for (Instrument* instrument : bench_.Instruments(kind)) {
        Ask(*instrument);
        if (stop_ <= bench_.Time()) return false;
      }
    }
  }
  return next_ > bench_.Time() && next_ < stop_;
}

void SampleTape::Ask(Instrument& instrument) {
  const NextSample next = instrument.BeginTape(*this);
  if (next.At < 0.0) return;
  readers_.push_back({.Who = &instrument});
  Await(readers_.back(), next);
  next_ = std::min(next_, readers_.back().Next);
}

void SampleTape::Await(Reader& reader, const NextSample& next) {
  const bool asks = next.At >= 0.0;
  reader.Next = asks && !next.AtOnce ? next.At : Never;
  if (asks && next.AtOnce) stop_ = std::min(stop_, next.At);
}

// Asks whose sample it is when they want the next one.
void SampleTape::Note(double began, double t) {
  const auto row = static_cast<std::size_t>(count_++);
  times_[row] = t;
  began_[row] = began;
  double next = Never;
  for (Reader& reader : readers_) {
    if (t >= reader.Next) {
      reader.Rows[static_cast<std::size_t>(reader.Count++)] = static_cast<int>(row);
      Await(reader, reader.Who->AwaitOnTape(t));
    }
    next = std::min(next, reader.Next);
  }
  if (count_ == room_) {
    stop_ = std::min(stop_, next);
    next = Never;
  }
  next_ = next;
}

// In four sums: additions need not wait for one another.
bool SampleTape::Fits() const {
  constexpr std::size_t Lanes = 4;
  static_assert(Most % Lanes == 0);
  const auto count = static_cast<std::size_t>(count_);
  std::array<double, Lanes> sums{};
  for (std::size_t signal = 0; signal < signals_.size(); ++signal) {
    if (!signals_[signal]) continue;
    const double* const values = values_.data() + signal * Most;
    std::size_t row = 0;
    for (; row + Lanes <= count; row += Lanes) {
      for (std::size_t lane = 0; lane < Lanes; ++lane) sums[lane] += std::abs(values[row + lane]);
    }
    for (; row < count; ++row) sums[0] += std::abs(values[row]);
  }
  return std::accumulate(sums.begin(), sums.end(), 0.0) <= most_;
}

int SampleTape::Deliver() {
  if (count_ == 0) return 0;
  for (const Reader& reader : readers_) {
    reader.Who->ReadTape(*this,
                         std::span(reader.Rows).first(static_cast<std::size_t>(reader.Count)));
  }
  return count_;
}

void SampleTape::Drop() {
  for (const Reader& reader : readers_) reader.Who->DropTape();
}

// Most ask for one after the other.
std::size_t SampleTape::IndexOf(const Variable& signal) const {
  if (++found_ < signals_.size() && signals_[found_] == &signal) return found_;
  found_ = static_cast<std::size_t>(std::ranges::find(signals_, &signal) - signals_.begin());
  return found_;
}

bool SampleTape::Has(const Variable& signal) const {
  return IndexOf(signal) < signals_.size();
}

const double* SampleTape::Values(const Variable& signal) const {
  return values_.data() + IndexOf(signal) * Most;
}

}  // namespace torvane
