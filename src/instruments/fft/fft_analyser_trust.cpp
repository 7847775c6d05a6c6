// What the FFT analyser keeps of its records, and what makes them doubtful.

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/angle.h"
#include "core/text.h"
#include "instruments/fft/fft_analyser.h"

namespace torvane {

namespace {

constexpr double LeastShareAtLimit = 0.001;  // of a record; fewer samples hardly move its response
constexpr double LeastGrowth = 4.0;          // a ramp grows by 4/3, its square by 16/9
constexpr double NearlyNoPower = 1e-12;      // of the output's power
constexpr double LeakOfBin = 0.1;            // of its value: 1 dB, 6 degrees
constexpr double LeakyShare = 1.0 / 3.0;     // of the frequencies, on their logarithmic axis

/// What a record's end leaves in a response's bins. A step D between the ends of a signal puts
/// D / (2 sin(pi k / N)) into bin k.
class Leak {
 public:
  Leak(double inputStep, double outputStep, int length)
      : inputStep_(inputStep), outputStep_(outputStep), length_(length) {}

  void Add(int bin, double xRe, double xIm, double yRe, double yIm) {
    const double x = std::hypot(xRe, xIm);
    const double y = std::hypot(yRe, yIm);
    const double weight = 1.0 / bin;
    all_ += weight;
    const double step =
        std::hypot(outputStep_ * xRe - inputStep_ * yRe, outputStep_ * xIm - inputStep_ * yIm);
    if (step > LeakOfBin * 2.0 * std::sin(Pi * bin / length_) * x * y) leaky_ += weight;
  }
  double Share() const { return all_ > 0.0 ? leaky_ / all_ : 0.0; }

 private:
  double inputStep_;
  double outputStep_;
  int length_;
  double all_ = 0.0;
  double leaky_ = 0.0;
};

}  // namespace

void ZelXfer::Undo(const UndoEntry& entry) {
  FrequencyAnalyser::Undo(entry);
  TakeUpResponse();
  TakeUpMeasurements({tSample_, Length()});
}

void ZelXfer::Redo(const UndoEntry& entry) {
  FrequencyAnalyser::Redo(entry);
  TakeUpResponse();
  TakeUpMeasurements({tSample_, Length()});
}

// The one that was measured before spectra were.
void ZelXfer::TakeUpResponse() {
  const BinSpacing bins{tSample_, Length()};
  if (spectrum_ || RecordOf(0).TellsResponse() || NextTime() >= 0.0) return;
  if (!aside_.TellsResponse() || aside_.Bins != bins) return;
  ExchangeRecords();
  MakeResponse(0);
}

void ZelXfer::ExchangeRecords() {
  for (ZelXferChannel* channel : records_) channel->Exchange();
  std::swap(RecordOf(0), aside_);
}

// Samples under a window say nothing of the kind.
void ZelXfer::ReadSamples() {
  if (spectrum_) return;
  const int excited = Length() - static_cast<int>(tEndDelay_ / tSample_);
  for (ZelXferChannel* channel : records_) channel->ReadSamples(excited);
}

std::vector<std::string> ZelXfer::RecordDoubts() const {
  std::vector<std::string> doubts = watch_.Doubts();
  if (spectrum_) return doubts;
  for (const ZelXferChannel* channel : records_) {
    const double share = channel->SamplesOf(0).AtLimit;
    if (share < LeastShareAtLimit) continue;
    doubts.push_back(channel->Name() + " stood at a limit for " +
                     FormatGeneral(100.0 * share, 2, 1) +
                     " % of the record: the response is not that of a linear loop.");
  }
  return doubts;
}

std::vector<std::string> ZelXfer::PairDoubts(int slot) const {
  const auto& input = dynamic_cast<const ZelXferChannel&>(*Input());
  const auto& output = dynamic_cast<const ZelXferChannel&>(*Output());
  const std::vector<bool>& excited = RecordOf(slot).Excited;
  Leak leak(input.SamplesOf(slot).Step, output.SamplesOf(slot).Step, Length());
  double inputPower = 0.0;
  double outputPower = 0.0;
  for (int bin = 1; bin < RecordEnd(slot); ++bin) {
    if (!excited[static_cast<std::size_t>(bin)]) continue;
    const double xRe = input.Real(slot, bin);
    const double xIm = input.Imaginary(slot, bin);
    const double yRe = output.Real(slot, bin);
    const double yIm = output.Imaginary(slot, bin);
    inputPower += xRe * xRe + xIm * xIm;
    outputPower += yRe * yRe + yIm * yIm;
    leak.Add(bin, xRe, xIm, yRe, yIm);
  }
  if (inputPower <= NearlyNoPower * outputPower) {
    return {input.Name() + " is nearly nothing beside " + output.Name() +
            ": their ratio is that of rounding."};
  }
  for (const ZelXferChannel* channel : {&input, &output}) {
    if (channel->SamplesOf(slot).Growth <= LeastGrowth) continue;
    return {channel->Name() + " grew until the record's end: the loop diverges."};
  }
  if (leak.Share() <= LeakyShare) return {};
  return {
      "The record does not end as it began, which leaks into its bins: more Start and End Zero "
      "Time, "
      "or a longer record, lets the loop come to rest."};
}

}  // namespace torvane
