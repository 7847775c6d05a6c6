#pragma once

namespace torvane {

/// What a tick of a sweep at f Hz and time t is to the correlations: sine and cosine of 2 pi f t,
/// and f t.
struct SweepTick {
  double Sin = 0.0;
  double Cos = 0.0;
  double Cycles = 0.0;

  static SweepTick At(double f, double t);
};

/// Sums over ticks of products of sine, cosine and one.
struct TickSums {
  double N = 0.0;
  double S = 0.0, C = 0.0;
  double SS = 0.0, SC = 0.0, CC = 0.0;
  double T = 0.0, TT = 0.0, TS = 0.0, TC = 0.0;  ///< T in cycles from the window's first tick

  void Add(const SweepTick& tick, double cyclesGone);
  void Add(const TickSums& other);
};

/// Sums over the same ticks of products with a signal.
struct SignalSums {
  double X = 0.0;
  double XS = 0.0, XC = 0.0;
  double TX = 0.0;  ///< with the cycles

  void Add(double x, const SweepTick& tick, double cyclesGone) {
    X += x;
    XS += x * tick.Sin;
    XC += x * tick.Cos;
    TX += x * cyclesGone;
  }
  void Add(const SignalSums& other) {
    X += other.X;
    XS += other.XS;
    XC += other.XC;
    TX += other.TX;
  }
};

}  // namespace torvane
