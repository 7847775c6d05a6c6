#include "core/sample_tape.h"

#include <algorithm>
#include <cmath>

#include "core/bench.h"
#include "core/instrument.h"
#include "core/variable.h"

namespace torvane {

namespace {

// Far below what single precision holds, and a record's sum of it.
constexpr double LargestOnTape = 1e30;

}  // namespace

void SampleTape::ListSignals() {
  double multiplier = 1.0;
  signals_.clear();
  sources_.clear();
  for (const Variable* variable : bench_.Variables()) {
    if (variable->Internal()) continue;
    signals_.push_back(variable);
    sources_.push_back(&variable->Value);
    multiplier = std::max(multiplier, std::abs(variable->Multiplier()));
  }
  listed_ = bench_.Variables().size();
  values_.resize(signals_.size() * Most);
  most_ = LargestOnTape / multiplier;
}

bool SampleTape::Begin(int most, Instrument* only) {
  if (most < 1) return false;
  if (listed_ != bench_.Variables().size()) ListSignals();
  room_ = std::min(most, Most);
  count_ = 0;
  sum_ = 0.0;
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
  reader.Next = Never;
  if (next.At < 0.0) return;
  if (next.AtOnce) {
    stop_ = std::min(stop_, next.At);
  } else {
    reader.Next = next.At;
  }
}

// It stands still within a run.
void SampleTape::SetTime(double shown) {
  if (Variable* const timeVar = bench_.TimeVar()) timeVar->Value = shown;
}

// Asks whose sample it is when they want the next one.
void SampleTape::Note(double began, double t) {
  const auto row = static_cast<std::size_t>(count_++);
  times_[row] = t;
  began_[row] = began;
  next_ = Never;
  for (Reader& reader : readers_) {
    if (t >= reader.Next) {
      reader.Rows[static_cast<std::size_t>(reader.Count++)] = static_cast<int>(row);
      Await(reader, reader.Who->AwaitOnTape(t));
    }
    next_ = std::min(next_, reader.Next);
  }
  if (count_ < room_) return;
  stop_ = std::min(stop_, next_);
  next_ = Never;
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

std::size_t SampleTape::IndexOf(const Variable& signal) const {
  return static_cast<std::size_t>(std::ranges::find(signals_, &signal) - signals_.begin());
}

bool SampleTape::Has(const Variable& signal) const {
  return IndexOf(signal) < signals_.size();
}

const double* SampleTape::Values(const Variable& signal) const {
  return values_.data() + IndexOf(signal) * Most;
}

}  // namespace torvane
