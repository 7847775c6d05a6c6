#pragma once

#include <string>
#include <vector>

#include "instruments/analyser/analyser.h"
#include "instruments/analyser/excitation.h"
#include "instruments/analyser/record_watch.h"
#include "instruments/fft/excitation_record.h"
#include "instruments/fft/fft.h"
#include "instruments/fft/fft_channel.h"
#include "instruments/fft/fft_setup.h"
#include "instruments/step_clock.h"

namespace torvane {

/// Dynamic signal analyser: excites the model with filtered noise, samples every offered signal of
/// the bench over a record of 2^Order samples and reads gain and phase from their spectra.
///
/// From Run, the excitation rests at its offset for the start delay, then drives the record and
/// returns to the offset for the end delay, the last part of the record.
///
/// To average, as many records follow each other without another start delay, and the excitation's
/// sequence goes on from one to the next.
///
/// A loop that samples, at the same rate or a whole multiple of it, has its samples a quarter of
/// its period before those of a record: on the same step they would read what was before or after
/// them as sums of times round.
class ZelXfer final : public FrequencyAnalyser {
 public:
  static constexpr int MinOrder = 3;
  /// How far a measurement is; it is under way while sampling.
  enum class State { Armed, Sampling, Complete, Halted };

  /// Records of up to 2^maxOrder samples.
  ZelXfer(ZelBenchTop& bench, int maxOrder, std::string name = "MainXFer");

  /// While a record is being taken, the time of its next sample.
  double NextTime() const override;
  bool Service(double t) override;
  void Restart() override;

  /// What the model adds to its command: a new value reaches it half a sample period after the
  /// sample at which it was drawn.
  double Excitation(double now) const override {
    return now < switchTime_ ? previousExcitation_ : excitation_;
  }

  void Run() override;
  /// Begins the next records at Run itself, even if they then meet a loop's samples.
  void SetAtOnce(bool atOnce) { atOnce_ = atOnce; }
  void Halt() override;
  void Undo(const UndoEntry& entry) override;
  void Redo(const UndoEntry& entry) override;

  void AddVar(const Variable& variable);

  State SampleState() const { return state_; }
  int SampleCount() const { return sampleCount_; }
  double Progress() const override;
  double ExpectedSeconds() const override { return tStartDelay_ + Averages() * RecordTime(); }
  int MaxOrder() const { return fft_.MaxOrder(); }
  int Order() const { return order_; }
  int Length() const { return 1 << order_; }
  double RecordTime() const { return Length() * tSample_; }
  double TSample() const { return tSample_; }
  double TStartDelay() const { return tStartDelay_; }
  double TEndDelay() const { return tEndDelay_; }
  double Amplitude() const { return amplitude_; }
  double Offset() const { return offset_; }
  bool Spectrum() const { return spectrum_; }
  /// Excite with two levels instead of uniform noise; excite with the unfiltered sequence.
  bool Binary() const { return binary_; }
  bool BypassFilter() const { return bypassFilter_; }

  /// The present set-up; what is to be said of another one, and putting that in force at once as
  /// one change. A refused one is reported and changes nothing.
  FftSetup Setup() const;
  SetupFinding Check(const FftSetup& setup) const;
  bool Apply(const FftSetup& setup);

  // Setters report and refuse a value out of range. A new order or sample period stops the
  // measurement and drops the memories; an end delay that is too long for the new record becomes a
  // fifth of it.
  void SetOrder(int order);
  void SetTSample(double seconds);
  void SetTStartDelay(double seconds);
  void SetTEndDelay(double seconds);
  void SetAmplitude(double amplitude);
  /// Keeps the present excitation within offset +- amplitude / 2.
  void SetOffset(double offset);
  /// Only the output's spectrum is shown, of samples under a triangular window. A record that is
  /// being taken begins anew. A response that was measured before is there again afterwards.
  void SetSpectrum(bool on);
  /// The user's click on the spectrum box: ticked, it arms the analyser as well, so that a model
  /// that runs gives a record of what it does, under its generator unless the run button is down.
  /// Until then the record that was taken before can be read.
  void ClickSpectrum(bool on);
  void SetBinary(bool on);
  void SetBypassFilter(bool on);

  /// The frequency axis from the first bin to half the Nyquist frequency.
  void AutoRange();

  double BinFrequency(int bin) const { return bin / (Length() * tSample_); }

  /// An eighth of the sample rate: the excitation is held from sample to sample, and its images
  /// come into the samples; up to there they cost 0.2 dB.
  double AccurateUpTo() const override { return 0.125 / tSample_; }
  double SampleTime() const override { return tSample_; }
  std::vector<std::string> Warnings() const override;
  void FinishLoading(const std::function<void(int line)>& atLine) override;

 protected:
  int RecordEnd(int /*slot*/) const override { return Length() / 2 + 1; }
  double RecordHz(int /*slot*/, int index) const override { return BinFrequency(index); }
  std::vector<std::string> PairDoubts(int slot) const override;
  void SaveSetup(RecordWriter& writer) const override;
  bool LoadSetup(const Record& record) override;
  bool OutputOnly() const override { return spectrum_; }
  bool StoreSlot(int slot) override;
  void SaveMore(RecordWriter& writer) const override;
  bool LoadMore(const std::string& keyword, int value) override;

 private:
  void Arm();
  double StepsToQuarter() const;
  void BeginMeasurement();
  void BeginRecord();
  void ExchangeRecords();
  void TakeUpResponse();
  void ReadSamples();
  std::vector<std::string> RecordDoubts() const;
  void FitEndDelay();
  void TakeSample(double t);
  void HoldPrevious();
  void CompleteRecord();
  void CompleteMeasurement();
  void TakeMeasurement();
  void DropRecords();

  Fft fft_;
  int order_;
  double tSample_ = 0.001;
  double tStartDelay_ = 0.4;
  double tEndDelay_ = 0.2;
  double amplitude_ = 1.0;
  double offset_ = 0.0;
  bool spectrum_ = false;
  bool binary_ = false;
  bool bypassFilter_ = false;

  struct FileEndDelay {
    double Seconds;
    int Line;  ///< 0: it is the one from before
  };
  std::optional<FileEndDelay> fileEndDelay_;  // while a file is read that has not ended yet

  State state_ = State::Halted;
  StepClock clock_;
  bool atOnce_ = false;
  // Seconds after the clock's start.
  double startDelayEnd_ = 0.0;
  double excitationEnd_ = 0.0;
  int sampleCount_ = 0;
  int recordsTaken_ = 0;
  bool averaging_ = false;  ///< the channels hold sums that are not taken yet

  double excitation_ = 0.0;
  double previousExcitation_ = 0.0;
  // Nothing was drawn before the program's first sample: a first record that starts at time 0
  // excites with 0 for half a sample before it rests at the offset.
  double previousInstant_ = 0.0;
  double switchTime_ = 0.0;  ///< from which on the model sees the present excitation
  RandomSequence sequence_;
  SmoothingFilter filter_;

  ExcitationRecord excitationRecord_;
  std::vector<double> excitationPower_;   ///< by bin, summed over the records
  std::vector<ZelXferChannel*> records_;  ///< the channels, as what they are
  RecordWatch watch_;
  MeasuredRecord aside_;  ///< a response's, while spectra are taken
};

}  // namespace torvane
