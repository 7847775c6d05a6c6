#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/bench.h"
#include "core/instrument.h"
#include "instruments/analyser/analyser_channel.h"
#include "instruments/analyser/model_loop.h"
#include "instruments/analyser/pair_theory.h"
#include "instruments/analyser/response_axes.h"
#include "instruments/analyser/response_slot.h"
#include "instruments/analyser/setup_finding.h"
#include "instruments/setting_caption.h"

namespace torvane {

/// A named pair of channels that is chosen with one press of a button; PhaseAdd degrees are added
/// to the phase that is read.
struct AnalyserSetup {
  std::string Name;
  std::string Input;
  std::string Output;
  double PhaseAdd = 0.0;
};

/// What is common to the analysers that measure gain and phase against frequency: the channels and
/// which of them are input and output, the run button, the traces (current measurement and four
/// memories) and how they are looked at.
class FrequencyAnalyser : public Instrument, public ResponseAxes {
 public:
  static constexpr int SlotCount = AnalyserChannel::SlotCount;
  /// Behind those of measurements: what theory says of the chosen pair.
  static constexpr int TheorySlot = SlotCount;
  /// "Current", "Memory 1", "Theory".
  static std::string SlotName(int slot);
  using ResponseAxes::SetView;
  using ResponseAxes::View;
  static constexpr int MaxSetups = 10;

  /// A trace can be shown once it has data.
  struct Trace {
    bool Enabled = false;
    bool Shown = false;
  };

  /// The run button is down; models take their command from the excitation then.
  bool Measuring() const final { return running_; }
  /// Presses and releases the run button.
  virtual void Run() = 0;
  virtual void Halt() = 0;

  const std::vector<std::unique_ptr<AnalyserChannel>>& Channels() const { return channels_; }
  /// The chosen channels; nullptr while there are fewer than two.
  AnalyserChannel* Input() const { return input_; }
  AnalyserChannel* Output() const { return output_; }
  /// An unknown name is reported and changes nothing.
  bool SetInput(const std::string& name);
  bool SetOutput(const std::string& name);

  /// Offers a pair of channels on the next of the ten set-up buttons.
  void AddSetup(std::string name, std::string input, std::string output, double phaseAdd = 0.0);
  const std::vector<AnalyserSetup>& Setups() const { return setups_; }
  bool SelectSetup(int index);
  /// Index of the set-up that is in force, or -1.
  int CurrentSetup() const;

  /// The loop that the model names as its own, as its constants stand; none for a model without
  /// feedback.
  void SetLoop(std::function<ModelLoop()> loop) { loop_ = std::move(loop); }
  std::optional<ModelLoop> Loop() const { return loop_ ? std::optional(loop_()) : std::nullopt; }

  /// Response at a fractional bin or point of a slot: output against input in dB and degrees (or
  /// the output alone, in spectrum mode). Linear between two neighbours, whose phases are wrapped
  /// to (-270, 90] first. A bin that no channel has is reported and reads 0.
  double ResponseGain(int slot, double index) const;
  double ResponsePhase(int slot, double index) const;

  /// The response is the output's alone.
  virtual bool OutputOnly() const { return false; }

  /// Whether a slot holds a response that may be read, and that response as it was made.
  bool HasData(int slot) const;
  const Response& ResponseAt(int slot) const { return SlotAt(slot).Held; }
  bool HasCoherence(int slot) const { return HasData(slot) && ResponseAt(slot).HasCoherence(); }

  /// What the view shows of a slot that has data. A spectrum is shown as it is.
  const Response& ShownResponse(int slot) const { return SlotAt(slot).AsSeen(); }
  /// The lower plot shows group delay instead of phase.
  bool ShowsDelay() const { return View().GroupDelay && !OutputOnly(); }

  /// What theory says of the chosen pair, from whoever knows the model's equations; it is no
  /// setting. With another pair there is none until the next is set.
  void SetTheory(PairTheory theory);
  bool ShowsTheory() const { return View().Theory && !OutputOnly(); }
  /// It has been set for the chosen pair, be it that there is none.
  bool TheoryKnown() const { return HasData(TheorySlot) || !theoryFault_.empty(); }

  /// What is shown of a slot at any frequency, Hz; nothing where it has no such value.
  std::optional<double> Read(ResponseQuantity quantity, int slot, double hz) const;
  std::optional<double> GainRead(int slot, double hz) const {
    return Read(ResponseQuantity::Gain, slot, hz);
  }
  std::optional<double> PhaseRead(int slot, double hz) const {
    return Read(ResponseQuantity::Phase, slot, hz);
  }
  std::optional<double> DelayRead(int slot, double hz) const {
    return Read(ResponseQuantity::Delay, slot, hz);
  }

  /// The share of the measurement in progress, or of the last one, that has been taken, 0 to 1.
  virtual double Progress() const = 0;

  /// What a measurement takes, simulated seconds.
  virtual double ExpectedSeconds() const = 0;

  /// Copies the current measurement into memory 1 to 4 and shows it; false after a note when there
  /// is none.
  bool StoreData(int slot);

  /// Puts a response that was measured elsewhere into memory 1 to 4 and shows it, whatever channels
  /// are chosen. The name says where it comes from.
  void LoadMemory(int slot, ResponseCurve curve, std::string name);
  /// Puts one there of which more is known: what it is of, its doubts, and when it was taken.
  void LoadMemory(int slot, Response response, TraceOrigin origin);
  /// Does so with the current measurement of another analyser, under its title and channels and
  /// with all that is known of it; false after a note when it has none, or a spectrum.
  bool CopyFrom(const FrequencyAnalyser& other, int slot, const std::string& title);
  /// That name; empty for a slot that holds a measurement of this analyser.
  const std::string& LoadedFrom(int slot) const { return ResponseAt(slot).Name(); }

  static constexpr int MaxAverages = 1000;
  /// Measurements that are averaged into one, at least 1.
  int Averages() const { return averages_; }
  void SetAverages(int count);
  static bool CanAverage(int count) { return count >= 1 && count <= MaxAverages; }
  static SetupFinding AveragesRefusal();

  /// Between the samples of a measurement, seconds.
  virtual double SampleTime() const = 0;

  /// The highest frequency at which the sample time in force measures gain and phase closely, Hz.
  virtual double AccurateUpTo() const = 0;

  /// What makes the measurement, as it is set up or going on, less trustworthy; a sentence each.
  virtual std::vector<std::string> Warnings() const;
  /// What makes a shown response doubtful, with the trace's name before it: "Memory 1: KP was
  /// changed while it was measured."
  std::vector<std::string> ShownDoubts() const;

  /// As the boxes of its window show it.
  Trace TraceAt(int slot) const;
  /// As they do, or will when a hidden window is shown again.
  Trace KeptTrace(int slot) const;
  /// When and with which constants the slot's measurement was taken; not known of one from a file.
  const TraceOrigin& Origin(int slot) const { return SlotAt(slot).Record.Origin; }
  void SetShown(int slot, bool shown);

  /// Whether the window is on the workspace; it is never destroyed.
  virtual void SetVisible(bool visible);

  void SaveRecords(RecordWriter& writer) const override;
  void LoadRecord(const Record& record) override;
  void SaveState(RecordWriter& writer) const override;
  void LoadState(const Record& record) override;
  void FinishLoading(const std::function<void(int line)>& atLine) override;

  /// Displayed data has changed since the last call.
  bool TakeNeedsRedraw();

 protected:
  /// The label ("Xfer", "SweptDSA") stands in the messages of refused settings.
  FrequencyAnalyser(InstrumentKind kind, std::string name, ZelBenchTop& bench, std::string label,
                    bool visible);

  /// The offset rule of the excitation's setters; returns the value to go on with. A value below
  /// the lower bound also becomes the upper one: deliberate, both analysers start an excitation
  /// from its top.
  static double LimitExcitation(double value, double amplitude, double offset);

  /// The first channel becomes the input, the second the output.
  void AddChannel(std::unique_ptr<AnalyserChannel> channel);
  /// Reports that there are too few channels to measure a response.
  void CheckChannels() const;
  /// The current measurement is of the model and with the set-up as they are now.
  void TakeOrigin();
  /// A trace that got its first data is shown.
  void EnableTrace(int slot);
  /// While they are put away, no trace is on the plot and all boxes are disabled.
  void PutAwayTraces(bool away) { away_ = away; }
  /// Stores the current measurement in a memory whose number is checked.
  virtual bool StoreSlot(int slot) = 0;
  /// Settings or data have changed: repaint, and the view re-reads the settings.
  void Changed();
  /// Stores a setting, a number as a file keeps it; one that is not finite is ignored. `name` is
  /// what undo calls it.
  void SetSetting(double& setting, double value, const char* name);
  /// Refuses one that is not good, with the message, or beyond the limits, with a message of them.
  void SetChecked(double& setting, double value, bool good, const char* message, const char* name,
                  double limit);
  template <class T>
  void Store(T& setting, T value, const char* name) {
    if (setting == value) return;
    Change(
        [&] {
          setting = value;
          MarkStale();
        },
        [&] { return SettingCaption(name, setting); });
  }
  void ChangeAxes(Touches touches, const std::function<void()>& change,
                  const Caption& caption) override;

  /// The records between the channels and the scales of the plot, the analyser's own.
  virtual void SaveSetup(RecordWriter& writer) const = 0;
  /// Takes one of them, of four entries; false when its keyword is unknown.
  virtual bool LoadSetup(const Record& record) = 0;
  /// The settings that no file keeps.
  virtual void SaveMore(RecordWriter& writer) const;
  virtual bool LoadMore(const std::string& keyword, int value);

  /// The bins or points of a slot's record, which is whole.
  virtual int RecordEnd(int slot) const = 0;
  virtual double RecordHz(int slot, int index) const = 0;
  /// What makes the response between the chosen channels doubtful, beside what does so for all.
  virtual std::vector<std::string> PairDoubts(int slot) const = 0;

  MeasuredRecord& RecordOf(int slot) { return SlotOf(slot).Record; }
  const MeasuredRecord& RecordOf(int slot) const { return SlotAt(slot).Record; }
  /// Makes a slot's response of what the channels hold of its measurement.
  void MakeResponse(int slot);
  void MakeResponses();
  /// There is no current measurement.
  void ClearCurrent();
  /// The set-up has become another one than measurements were taken with. A response from elsewhere
  /// has nothing to do with it.
  void DropMeasurements();
  /// Those that an earlier set-up measured are there again when it is.
  void TakeUpMeasurements(const BinSpacing& bins);

  ZelBenchTop& bench_;
  bool running_ = false;

 private:
  using Reading = double (AnalyserChannel::*)(int, int);
  const ResponseSlot& SlotAt(int slot) const { return slots_[static_cast<std::size_t>(slot)]; }
  ResponseSlot& SlotOf(int slot) { return slots_[static_cast<std::size_t>(slot)]; }
  AnalyserChannel* FindChannel(const std::string& name) const;
  double Difference(Reading reading, int slot, int index) const;
  double WrappedPhase(int slot, int index) const;
  double Coherence(int slot, int index) const;
  Response Measured(int slot) const;
  void Hold(int slot, Response response, TraceOrigin origin);
  void See(int slot);
  double ValueOf(double ResponsePoint::*value, int slot, int index) const;
  double Interpolated(double ResponsePoint::*value, int slot, double index) const;
  bool Choose(AnalyserChannel*& chosen, const std::string& name, const char* what);
  void DropTheory();
  /// An unwrapped phase begins in the turn in which the measurement does.
  void TurnTheory();
  /// What is drawn has changed.
  void MarkStale() { needsRedraw_ = true; }
  bool LoadChoice(const Record& record);

  std::vector<std::unique_ptr<AnalyserChannel>> channels_;
  AnalyserChannel* input_ = nullptr;
  AnalyserChannel* output_ = nullptr;
  double phaseAdd_ = 0.0;
  std::vector<AnalyserSetup> setups_;
  std::function<ModelLoop()> loop_;
  std::array<ResponseSlot, SlotCount + 1> slots_;
  std::string theoryFault_;
  int averages_ = 1;
  bool visible_;
  bool away_ = false;
  bool needsRedraw_ = false;
};

/// The loop that a model's first FFT analyser knows as the model's own, as its constants stand.
std::optional<ModelLoop> LoopOnBench(const ZelBenchTop& bench);

}  // namespace torvane
