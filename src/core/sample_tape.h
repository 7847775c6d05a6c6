#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

namespace torvane {

class Instrument;
class Variable;
class ZelBenchTop;

/// When an instrument wants to see the model next.
struct NextSample {
  double At = -1.0;    ///< simulated seconds; the step boundary at or after it is meant
  bool AtOnce = true;  ///< the run ends there; otherwise the sample may wait on the tape
};

/// What a bench's offered signals were at the instants at which instruments sample them, taken
/// within a run and handed over after it: to end a run for each sample would cost more than the
/// steps between two of them. By signal, so that an instrument goes through one after the other.
class SampleTape {
 public:
  static constexpr int Most = 24;  ///< samples

  explicit SampleTape(const ZelBenchTop& bench) : bench_(bench) {}

  /// Asks the bench's instruments what they want to see, or the only one that is served, for a run
  /// from the present time with at most so many samples on the tape, of a loop whose numbers lie
  /// there. False when the next thing must be seen at once.
  bool Begin(int most, std::span<const std::byte> loop, Instrument* only = nullptr);

  /// The time at which the next sample is due, and that at which the run has to end.
  double Next() const { return next_; }
  double Stop() const { return stop_; }

  /// Takes the sample that is due at the boundary t, of a step that began at `began`. Signals that
  /// lie in the bench's loop are read off the copy on which the run works.
  ///
  /// In the header, where the compiler sees that nobody else gets hold of the copy.
  template <class Loop>
  void Take(double began, double t, const Loop& copy) {
    const char* const start = reinterpret_cast<const char*>(&copy);
    double* value = values_.data() + count_;
    for (std::size_t first = 0; first < offsets_.size(); first += PerTurn) {
      for (std::size_t i = first; i < first + PerTurn; ++i) {
        *value = *reinterpret_cast<const double*>(start + offsets_[i]);
        value += Most;
      }
    }
    for (const double* source : elsewhere_) {
      *value = *source;
      value += Most;
    }
    Note(began, t);
  }

  /// Whether the signals fit what instruments store, single precision and sums over a record.
  bool Fits() const;

  /// Hands the samples to those who asked for them; gives how many there were.
  int Deliver();
  /// The run is undone: nobody gets them.
  void Drop();

  // For the instruments. Rows run from 0, in the order of time.
  bool Has(const Variable& signal) const;
  /// A signal's value in each row, without the display multiplier; of a signal that it has.
  const double* Values(const Variable& signal) const;
  const double* Times() const { return times_.data(); }
  double Time(int row) const { return times_[static_cast<std::size_t>(row)]; }
  /// When the step began that ended at Time: what the time variable shows there.
  const double* TimeShown() const { return began_.data(); }
  /// The last sample of anybody.
  double LastTime() const { return Time(count_ - 1); }

 private:
  struct Reader {
    Instrument* Who = nullptr;
    double Next = 0.0;
    int Count = 0;
    std::array<int, Most> Rows{};
  };

  void ListSignals(std::span<const std::byte> loop);
  void Note(double began, double t);
  void Ask(Instrument& instrument);
  void Await(Reader& reader, const NextSample& next);
  std::size_t IndexOf(const Variable& signal) const;

  static constexpr double Never = std::numeric_limits<double>::infinity();
  static constexpr std::size_t PerTurn = 4;  // signals that a turn of the loop copies

  const ZelBenchTop& bench_;
  std::vector<const Variable*> signals_;  // those in the loop and none, by whole turns; the others
  std::vector<std::size_t> offsets_;      // bytes from the loop's beginning
  std::vector<const double*> elsewhere_;
  mutable std::size_t found_ = 0;  // the signal that was asked for last
  std::size_t listed_ = 0;         // variables of the bench that have been looked at
  double most_ = 0.0;
  int room_ = 0;
  int count_ = 0;
  double next_ = Never;
  double stop_ = Never;
  std::array<double, Most> times_{};
  std::array<double, Most> began_{};
  std::vector<double> values_;  // Most of each signal
  std::vector<Reader> readers_;
};

}  // namespace torvane
