#pragma once

#include <array>
#include <span>
#include <string>

#include "core/bench.h"
#include "core/instrument.h"
#include "instruments/meter/meter_kind.h"
#include "instruments/meter/meter_measurements.h"
#include "instruments/meter/reading_spread.h"
#include "instruments/sample_clock.h"
#include "instruments/whole_periods.h"

namespace torvane {

class ZelModel;

/// Meter: one number computed every T seconds from a signal x of the bench (and for two kinds a
/// second signal y), each multiplied by its display multiplier: meter_measurements.h says how, with
/// the pole a = e^(-6.2831852 low-pass frequency T) for all kinds but the harmonic. AC coupling
/// passes each signal through a high-pass with the pole b = e^(-6.2831852 high-pass frequency T)
/// before any of these.
class ZelMeter final : public Instrument {
 public:
  static constexpr int MaxMeters = 15;

  /// Measures the RMS value of the bench's first offered signal until told otherwise.
  ZelMeter(ZelBenchTop& bench, std::string name);
  ~ZelMeter() override;

  double NextTime() const override;
  bool Service(double t) override;
  NextSample BeginTape(const SampleTape& tape) override;
  NextSample AwaitOnTape(double t) override;
  void ReadTape(const SampleTape& tape, std::span<const int> rows) override;
  void Restart() override;

  /// What the meter adds to the model's command while its excitation is on: a sine at the harmonic
  /// frequency times the multiplier, which sets which multiple of the excited frequency is measured
  /// (1 measures the response itself, 1/2 the second harmonic).
  double Excitation(double now) const override;
  bool Excites() const override { return useExcitation_; }

  void SaveRecords(RecordWriter& writer) const override;
  void LoadRecord(const Record& record) override;

  double Value() const { return reading_.Value; }
  /// The value as far as it stands: of a reading that swings with the signal, its middle to the
  /// first digit of the swing.
  std::string ValueText() const;
  /// The reading has stayed within 1 % to either side for the last seconds of simulated time. A
  /// harmonic is read over whole periods, and always is.
  bool IsSettled() const;
  /// The frequency above which the low-pass filter settles so far on a sine, Hz; as text in two
  /// digits.
  double SettledFrom() const;
  std::string SettledFromText() const;
  /// In degrees, of the harmonic kind; in (-270, 90].
  double AngleDeg() const;
  /// Unit of the value shown; "(Unitless)" when there is none.
  std::string UnitText() const;

  /// The signals chosen; nullptr on a bench without offered signals.
  const Variable* Measured() const { return measured_.Signal; }
  const Variable* CorrVar() const { return correlated_.Signal; }
  const Variable* HarmonicXferVar() const { return transfer_.Signal; }
  // By name; an unknown name is reported and gives false.
  bool SetVariable(const std::string& name);
  bool SetCorrVar(const std::string& name);
  bool SetHarmonicXferVar(const std::string& name);

  MeterKind Measurement() const { return kind_; }
  bool AcCoupled() const { return ac_; }
  double TSample() const { return tSample_; }
  double Lpf() const { return lpf_; }
  double AcHpf() const { return hpf_; }
  double HarmonicFreq() const { return harmonicFreq_; }
  double TWindow() const { return tWindow_; }
  bool HarmonicXfer() const { return harmonicXfer_; }
  bool UseDb() const { return useDb_; }

  void SetKind(MeterKind kind);
  void SetAcCoupled(bool on);
  void SetHarmonicXfer(bool on);
  void SetUseDb(bool on);
  // Seconds and Hz; a value out of range is reported and refused.
  void SetTSample(double seconds);
  void SetLpf(double hz);
  void SetAcHpf(double hz);
  void SetHarmonicFreq(double hz);
  void SetTWindow(double seconds);

  /// The time over which a harmonic is integrated, whole periods, seconds.
  double WindowLength() const { return WholePeriods(tWindow_ * harmonicFreq_) / harmonicFreq_; }

  bool UseExcitation() const { return useExcitation_; }
  double ExcitationMag() const { return excitationMag_; }
  double ExcitationOff() const { return excitationOff_; }
  double ExcitationMult() const { return excitationMult_; }
  void SetUseExcitation(bool on);
  void SetExcitationMag(double magnitude);
  void SetExcitationOff(double offset);
  void SetExcitationMult(double multiplier);

  /// The window's set-up panel is open.
  bool ShowSetup() const { return showSetup_; }
  void SetShowSetup(bool on);

 private:
  /// A signal read by the meter, with the slow part that AC coupling removes.
  struct Source {
    const Variable* Signal = nullptr;
    double Now = 0.0;  ///< its display value at the sample
    double Slow = 0.0;
    bool Primed = false;
  };

  bool Choose(Source& source, const std::string& name, const char* caption,
              const std::string& message);
  void LoadMeterDisplay(const Record& record);
  bool LoadSwitch(const Record& record);
  bool LoadVariable(const Record& record);
  bool LoadNumber(const Record& record);
  void ComputePoles();
  double Read(Source& source) const;
  /// Stores a setting; Store is for those that what is being measured depends on.
  template <class T>
  void Keep(T& setting, T value, const char* name);
  template <class T>
  void Store(T& setting, T value, const char* name);
  void SetNumber(double& setting, double value, bool good, const char* message, const char* name,
                 double limit);
  void SetExcitation(double& setting, double value, const char* name);
  std::array<Source*, 3> Sources() { return {&measured_, &correlated_, &transfer_}; }
  void Update(double t);
  void UpdateHarmonic(double t, double x);
  bool Finite() const;

  ZelBenchTop& bench_;
  MeterKind kind_ = MeterKind::Rms;
  Source measured_;
  Source correlated_;
  Source transfer_;
  bool ac_ = false;
  double tSample_ = 0.00025;
  double lpf_ = 24.5;
  double hpf_ = 2.0;
  double harmonicFreq_ = 2.0;
  double tWindow_ = 0.5;
  bool harmonicXfer_ = false;
  bool useDb_ = false;
  bool useExcitation_ = false;
  double excitationMag_ = 1.0;
  double excitationOff_ = 0.0;
  double excitationMult_ = 1.0;
  bool showSetup_ = false;

  double lowPole_ = 0.0;
  double highPole_ = 0.0;
  SampleClock clock_;
  SampleClock onTape_;  // the clock as of the last sample on the tape
  RmsMeasurement rms_;
  AverageMeasurement average_;
  HarmonicMeasurement harmonic_;
  CorrelationMeasurement correlation_;
  MeterReading reading_;
  ReadingSpread spread_;
};

/// Adds a meter that lives as long as the model. Its name is made its own when another meter has
/// it. Reports and gives nullptr when the bench already holds MaxMeters.
ZelMeter* AddMeter(ZelModel& model, const std::string& name);

}  // namespace torvane
