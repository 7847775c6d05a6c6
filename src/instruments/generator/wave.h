#pragma once

#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "core/instrument.h"
#include "core/numeric.h"
#include "core/time_driven.h"
#include "core/variable.h"
#include "instruments/generator/wave_table.h"

namespace torvane {

/// What a generator puts out.
enum class Waveform {
  Sine,
  Square,
  Triangle,
  Sawtooth,
  Pulse,
  BipolarPulse,
  Trapezoid,
  SCurve,
  Dc
};

/// What a generator is set to. Frequency in Hz (never negative), phase in degrees, duty cycle in
/// per cent (0 to 100).
struct WaveSettings {
  int Index = 0;  ///< a Waveform, 0 to 8
  double FreqHz = 10.0;
  double Amplitude = 10.0;
  double Offset = 0.0;
  double PhaseDeg = 0.0;
  double DutyCycle = 50.0;
};

class ZelWave;

/// One of a generator's numbers: its name in files and options, and for the user.
struct WaveNumber {
  const char* Name;
  const char* Caption;
  double WaveSettings::*Value;
  void (ZelWave::*Set)(double);
};

/// Waveform generator: one of nine periodic waveforms of the simulated time, or a table of points.
///
/// A table's values are multiplied by the amplitude and moved by the offset. At a frequency of 0 it
/// is played once, from time 0; else anew with each period, where the phase says.
///
/// The value computed for the end of a step reaches the output through a state variable, so models
/// read it one step later; the second output follows one step behind the first.
class ZelWave final : public TimeDriven, public Instrument {
 public:
  static constexpr int WaveformCount = 9;

  ZelWave(ZelBenchTop& bench, std::string name, const WaveSettings& settings, double gain = 1.0);

  static int LimitedIndex(int index);

  /// The waveforms' names, as listed to the user.
  static const std::array<const char*, WaveformCount>& WaveformNames();

  /// All of its numbers, in the order of their records.
  static const std::array<WaveNumber, 5>& Numbers();

  // Both states keep a derivative of 0: they move only by what is published here.
  void AtTime(double t) override {
    if (t != computedAt_) ComputeAt(t);
    next_.SetPending(computed_);
    delayed_.SetPending(next_);
  }

  /// Does at once what the four evaluations of a step that ends at t come to: what is published
  /// within a step never shows, as the last evaluation, at its end, has the final word.
  void AtEndOfStep(double t) {
    ComputeAt(t);
    delayed_.Value = next_.Value;
    next_.Value = computed_;
  }

  /// The states, which nothing integrates.
  auto HeldStates() { return std::tie(next_, delayed_); }

  /// The numbers that a step moves.
  auto Moved() {
    return std::tie(computed_, fraction_, computedAt_, steadyUntil_, next_.Value, delayed_.Value);
  }

  bool OverflowsAt(double t) const override;

  /// Plays the table as it stands: once, at amplitude 1 and offset 0. The next choice of a waveform
  /// ends that and brings the numbers back that the generator had.
  void Play(std::shared_ptr<const WaveTable> table);
  /// What is played; nullptr of a waveform.
  const WaveTable* Played() const { return played_.get(); }
  /// The waveform's name, or that of what is played with its number among all that were.
  std::string WaveformText() const;

  /// The one time after `from` and up to `to` at which the output jumps; nothing when there is
  /// none, more than one, or the settings of then are no longer known. An instrument that samples a
  /// signal sees only between which two samples it jumped.
  std::optional<double> JumpIn(double from, double to) const;
  /// The fraction of its cycle at which the output jumps up, or down where it only does so; nothing
  /// without jumps.
  std::optional<double> RisingEdge() const;

  /// Published outputs, the live values of the two state variables.
  double Output() const { return next_; }
  double DelayedOutput() const { return delayed_; }
  /// The value last computed, and 1 during the first half of each period, else 0.
  double Computed() const { return computed_; }
  double Sync() const { return fraction_ < 0.5 ? 1.0 : 0.0; }

  void SaveRecords(RecordWriter& writer) const override;
  void LoadRecord(const Record& record) override;
  void FinishLoading(const std::function<void(int line)>& atLine) override;
  void SaveState(RecordWriter& writer) const override;
  void LoadState(const Record& record) override;

  const WaveSettings& Settings() const { return settings_; }
  /// Setters: the index is limited to 0..8, the duty cycle to 0..100, the frequency stored as its
  /// absolute value. What is not a finite number changes nothing.
  void SetWaveform(int index);
  void SetFreqHz(double hz);
  void SetAmplitude(double amplitude);
  void SetOffset(double offset);
  void SetPhaseDeg(double degrees);
  void SetDutyCycle(double percent);

 private:
  double CyclesAt(double t) const;
  void ComputeAt(double t);
  void Recompute(double t);
  double SteadyUntil(double cycles) const;
  double ValueAt(double x, double t) const;
  double PlayedAt(double x, double t) const;
  void Take(std::shared_ptr<const WaveTable> table);
  void SaveNumbers(RecordWriter& writer) const;
  std::ptrdiff_t PlayedPlace() const;
  void EndPlaying();
  void LoadUnplayed(const Record& record);
  void LoadPoints(const Record& record);
  void SetNumber(double WaveSettings::*number, double value);
  std::string Caption(const std::string& setting, const std::string& value) const;
  std::string WaveformCaption() const;
  void ForgetComputed();

  static constexpr int Table = WaveformCount;  ///< a shape beside the waveforms

  /// A table as a file's records bring it.
  struct Loading {
    std::string Name;
    std::vector<WaveTable::Point> Points;
    int Line;
  };

  WaveSettings settings_;
  int shape_;  ///< the waveform's index, or Table
  std::shared_ptr<const WaveTable> played_;
  WaveSettings unplayed_;  ///< what it was set to before the table
  /// All that were played since the generator was made, for steps to undo.
  std::vector<std::shared_ptr<const WaveTable>> tables_;
  std::optional<Loading> loading_;
  double gain_;
  double computed_ = 0.0;
  double fraction_ = 1.0;  // of the cycle, when the value was computed
  // The time that the computed value stands for; not-a-number asks for a new one.
  double computedAt_ = std::numeric_limits<double>::quiet_NaN();
  // The value holds until then, and so does the half of the cycle; not-a-number where it does not.
  double steadyUntil_ = std::numeric_limits<double>::quiet_NaN();
  // The last time at which other settings were in force.
  double changedAt_ = -std::numeric_limits<double>::infinity();
  State next_;
  State delayed_;
  StateVariable nextOnBench_;
  StateVariable delayedOnBench_;
};

// In the header, as a step inlines it: a square wave, which most loops are first shown with, is
// computed at its edges alone.
inline void ZelWave::ComputeAt(double t) {
  if (t >= computedAt_ && t < steadyUntil_) [[likely]] {
    computedAt_ = t;
  } else {
    Recompute(t);
  }
}

}  // namespace torvane
