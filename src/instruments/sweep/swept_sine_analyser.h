#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "instruments/analyser/analyser.h"
#include "instruments/analyser/record_watch.h"
#include "instruments/step_clock.h"
#include "instruments/sweep/sweep_setup.h"
#include "instruments/sweep/swept_sine_channel.h"
#include "instruments/sweep/turning_sine.h"

namespace torvane {

/// Swept-sine analyser: excites the model with a sine, lets it settle, correlates every offered
/// signal over whole periods, and steps the frequency by a fixed ratio from FreqMin until it has
/// reached FreqMax. To average, a point is measured over as many windows in a row. Its window is
/// hidden until it is asked for.
///
/// The sine is held from tick to tick and the signals are read just before it moves on, so a
/// response reads 180 f tSample degrees early: choose tSample a hundredth of the shortest period or
/// less.
class ZelSweptDSA final : public FrequencyAnalyser {
 public:
  /// How far a sweep is.
  enum class State { Idle, Start, Measuring, Advance, Done };
  /// Points of one sweep.
  static constexpr int Capacity = 2048;

  ZelSweptDSA(ZelBenchTop& bench, std::string name);

  /// The next tick while a point is being measured. Between two points no time is asked for: the
  /// step comes with the first call after the tick.
  double NextTime() const override;
  bool Service(double t) override;
  NextSample BeginTape(const SampleTape& tape) override;
  NextSample AwaitOnTape(double t) override;
  void ReadTape(const SampleTape& tape, std::span<const int> rows) override;
  void DropTape() override {
    excitation_ = excitationBefore_;
    sine_ = sineBefore_;
  }
  void Restart() override;
  void KeepOwnMemory() override { ownPhase_ = 0.0; }

  /// What the model adds to its command; 0 unless a sweep is in progress.
  double Excitation(double /*now*/) const override { return excitation_; }

  /// Refuses, after a report, a sweep that has more points than there is room for or goes beyond
  /// half the sample rate.
  void Run() override;
  void Halt() override;

  /// What a sweep takes with the present settings; Capacity + 1 points when there is no room.
  SweepPlan ExpectedPlan() const;
  double ExpectedSeconds() const override { return ExpectedPlan().Seconds; }
  double Progress() const override;
  /// Points of the sweep in progress, or of the last one.
  int PointsExpected() const { return pointsExpected_; }

  State SweepState() const { return state_; }
  /// When the next tick is due, also between two points; negative while no sweep is in progress.
  double NextTick() const;
  double Frequency() const { return f_; }
  /// Points measured in slot 0 and their frequencies, Hz.
  int PointCount() const { return RecordEnd(0); }
  double PointFrequency(int slot, int index) const {
    return RecordOf(slot).Frequencies[static_cast<std::size_t>(index)];
  }

  double TSample() const { return tSample_; }
  double StartFreq() const { return startFreq_; }
  double EndFreq() const { return endFreq_; }
  int StepsPerDecade() const { return stepsPerDecade_; }
  double SettleTime() const { return settleTime_; }
  double MeasurementTime() const { return measurementTime_; }
  double Amplitude() const { return amplitude_; }
  double Offset() const { return offset_; }

  /// The present set-up; what is to be said of another one, and putting that in force at once as
  /// one change. A refused one is reported and changes nothing.
  SweepSetup Setup() const;
  SetupFinding Check(const SweepSetup& setup) const;
  bool Apply(const SweepSetup& setup);

  // Setters report and refuse a value out of range.
  void SetTSample(double seconds);
  void SetStartFreq(double hz);
  void SetEndFreq(double hz);
  void SetStepsPerDecade(int steps);
  void SetSettleTime(double seconds);
  /// Divided by the frequency it gives the number of periods measured, rounded up, at least one.
  void SetMeasurementTime(double seconds);
  void SetAmplitude(double amplitude);
  void SetOffset(double offset);

  /// Makes the range between StartFreq and EndFreq, in either order, the one that is swept.
  void ApplySweepRange();

  /// A hundredth of the tick rate.
  double AccurateUpTo() const override { return 0.01 / tSample_; }
  double SampleTime() const override { return tSample_; }

  /// A hidden window's traces are off the plot; shown again, it has them as they were.
  void SetVisible(bool visible) override;

 protected:
  int RecordEnd(int slot) const override {
    return static_cast<int>(RecordOf(slot).Frequencies.size());
  }
  double RecordHz(int slot, int index) const override { return PointFrequency(slot, index); }
  std::vector<std::string> PairDoubts(int slot) const override;
  void SaveSetup(RecordWriter& writer) const override;
  bool LoadSetup(const Record& record) override;
  bool StoreSlot(int slot) override;

 private:
  SweepSetup PlottedSetup() const;
  bool InProgress() const;
  double& Phase() { return ownPhase_ ? *ownPhase_ : sharedPhase_; }
  NextSample NextOnTape() const;
  void Excite(double t);
  void BeginSweep();
  void BeginPoint();
  void StepFrequency(double t);
  void CompletePoint();
  void Finish(State state);
  std::vector<std::string> RecordDoubts() const;

  double tSample_ = 0.005;
  double startFreq_ = 10.0;
  double endFreq_ = 0.2;
  int stepsPerDecade_ = 25;
  double settleTime_ = 0.005;
  double measurementTime_ = 0.005;
  double amplitude_ = 1.0;
  double offset_ = 0.0;

  State state_ = State::Idle;
  double f_ = 0.0;
  int pointIndex_ = 0;
  int pointsExpected_ = 0;
  StepClock clock_;
  // Seconds after the clock's start.
  double settleEnd_ = 0.0;
  double measurementEnd_ = 0.0;
  int windows_ = 0;  ///< windows of the point that are whole
  SweepWindow window_;
  double excitation_ = 0.0;
  TurningSine sine_;

  // As of the last sample on the tape.
  StepClock onTape_;
  double endOnTape_ = 0.0;           ///< steps to the end of the measurement
  bool settledOnTape_ = false;       ///< ticks belong to a window
  std::size_t unsettledOnTape_ = 0;  ///< ticks on it that belong to no window
  double excitationBefore_ = 0.0;    ///< the tape
  TurningSine sineBefore_;

  /// Keeps the sine continuous when the frequency changes. One value serves every analyser of the
  /// thread, on purpose: a new model's sweep goes on from the phase of the last.
  static thread_local double sharedPhase_;
  std::optional<double> ownPhase_;  ///< that of an analyser that keeps its own

  std::vector<ZelSweptDSAChannel*> points_;  ///< the channels, as what they are
  RecordWatch watch_;
};

}  // namespace torvane
