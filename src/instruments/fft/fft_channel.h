#pragma once

#include <array>
#include <vector>

#include "instruments/analyser/analyser_channel.h"
#include "instruments/fft/fft.h"
#include "instruments/fft/record_average.h"
#include "instruments/fft/signal_record.h"

namespace torvane {

/// One signal of the FFT analyser: records of 2^order samples in single precision and, in the same
/// arrays after the first reading, their spectra.
class ZelXferChannel final : public AnalyserChannel {
 public:
  /// What a slot's arrays hold.
  enum class SlotState { Samples = 1, Spectrum = 3 };

  /// Records of up to 2^fft.MaxOrder() samples; the transform is shared by all channels and must
  /// outlive them.
  ZelXferChannel(const Variable& variable, const Fft& fft);

  int Order() const { return order_; }
  int Length() const { return 1 << order_; }
  void SetOrder(int order);
  /// Samples are weighted with a triangular window of peak 2.
  void SetWindow(bool on) { window_ = on; }
  bool Window() const { return window_; }

  /// Stores the signal's present value in slot 0.
  void Sample(int index);
  /// Slot 0 is about to receive new samples.
  void MarkNewSamples();

  /// Slot 0 is about to receive a record, or several to average.
  void BeginMeasurement(bool averages);
  /// Averaging: takes slot 0's record in, and puts the average of so many records into
  /// slot 0, of the response to the excitation or, without its power, of the spectrum alone.
  void AddToAverage(const ExcitationRecord& excitation);
  void TakeAverage(int records, const std::vector<double>* excitationPower);

  /// Slot 0's samples, of which so many were taken under the excitation, are whole.
  void ReadSamples(int excited);
  /// What they say of a slot; of an average, of the record that says most.
  const SignalRecord& SamplesOf(int slot) const { return SlotOf(slot).Samples; }
  /// Puts slot 0's record aside, and takes the one back that was put aside before.
  void Exchange();

  /// Of bin `index`, 0 to Length() - 1; transforms the slot's samples first when need be.
  double Gain(int slot, int index) override;
  double Phase(int slot, int index) override;

  /// Transforms a slot that holds samples.
  void RunFFT(int slot);
  /// Copies slot 0's spectrum to slot 1 to 4; false when there is no such slot or no memory for it.
  bool StoreData(int slot);

  SlotState State(int slot) const { return SlotOf(slot).State; }
  float Real(int slot, int index) const { return SlotOf(slot).Re[static_cast<std::size_t>(index)]; }
  float Imaginary(int slot, int index) const {
    return SlotOf(slot).Im[static_cast<std::size_t>(index)];
  }

 private:
  struct Slot {
    SlotState State = SlotState::Samples;
    std::vector<float> Re;  ///< empty until the slot is first used
    std::vector<float> Im;
    SignalRecord Samples;
  };
  /// Slot 0 with its arrays: most models are built, run and gone without a record.
  Slot& Present() {
    if (slots_[0].Re.empty()) [[unlikely]] {
      MakeArrays();
    }
    return slots_[0];
  }
  void MakeArrays();
  const Slot& SlotOf(int slot) const { return slots_[static_cast<std::size_t>(slot)]; }

  bool Readable(int slot, int index, const char* message);

  const Fft& fft_;
  int order_;
  bool window_ = false;
  RecordAverage average_;
  std::array<Slot, SlotCount> slots_;
  Slot aside_;
  std::vector<float> coherencesAside_;
};

}  // namespace torvane
