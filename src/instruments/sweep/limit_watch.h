#pragma once

#include <span>

namespace torvane {

/// Whether a signal that follows a sine stands at a limit: at its greatest or least value for far
/// longer than at any other. One that is held or quantised stays no more than five times as long at
/// its turning points as beside them.
class LimitWatch {
 public:
  /// The next values; how they are divided makes no difference.
  void See(std::span<const double> values);

  bool AtLimit() const;

 private:
  static constexpr int FarLonger = 8;

  struct Extreme {
    double Value = 0.0;
    int Longest = 0;
  };

  void See(double value);
  void Take(Extreme& extreme, double value, int run, bool beyond);
  void EndRun();

  Extreme greatest_;
  Extreme least_;
  int between_ = 0;
  double last_ = 0.0;
  int run_ = 0;
};

}  // namespace torvane
