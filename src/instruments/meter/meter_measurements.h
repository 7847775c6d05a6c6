#pragma once

#include <optional>

namespace torvane {

// The four measurements of a meter. Each takes the signals sample by sample; what it remembers
// begins at 0. `pole` is that of the low-pass which smooths a reading, from 0 to 1.

/// What a meter shows: a value and, of a harmonic, its angle in radians.
struct MeterReading {
  double Value = 0.0;
  double Angle = 0.0;
};

/// r := sqrt(pole r^2 + (1 - pole) x^2)
class RmsMeasurement {
 public:
  MeterReading Add(double x, double pole);
  bool Finite() const;

 private:
  double rms_ = 0.0;
};

/// m := pole m + (1 - pole) x
class AverageMeasurement {
 public:
  MeterReading Add(double x, double pole);
  bool Finite() const;

 private:
  double mean_ = 0.0;
};

/// The gain P / Q, P and Q the averages of x y and y y; nothing while Q is 0.
class CorrelationMeasurement {
 public:
  std::optional<MeterReading> Add(double x, double y, double pole);
  bool Finite() const;

 private:
  double p_ = 0.0;
  double q_ = 0.0;
};

/// Amplitude and angle of one frequency in x, or their ratio to those in y, integrated over windows
/// of whole periods.
class HarmonicMeasurement {
 public:
  /// What is told: of x alone, or its ratio to y, plain or in dB.
  enum class Shown { Amplitude, Ratio, RatioDb };

  /// Whether a window is under way; a sample counts only within one.
  bool Open() const { return open_; }
  /// Begins a window at t, of the given length in seconds.
  void Start(double t, double length);
  /// The window under way counts no more.
  void Stop() { open_ = false; }

  /// A sample at t, the given period after the one before it; hz is the frequency. At the window's
  /// end its reading; the caller then begins the next one.
  std::optional<MeterReading> Add(double t, double period, double hz, double x, double y,
                                  Shown shown);
  bool Finite() const;

 private:
  /// Of a signal: its products with sine and cosine, integrated.
  struct Sums {
    double S = 0.0;
    double C = 0.0;
  };

  MeterReading Finish(Shown shown);

  bool open_ = false;
  double length_ = 0.0;
  double end_ = 0.0;
  Sums x_;
  Sums y_;
  double ratio_ = 0.0;  // stays where the reference is nothing
};

}  // namespace torvane
