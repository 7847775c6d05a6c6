#pragma once

#include "library/d_second_order.h"

namespace torvane {

/// Sampled two-pole, two-zero filter, poles and zeros matched, unity gain at DC:
///
///     y = g (x + Z1 x1 + Z2 x2) - P1 y1 - P2 y2      with g = (1 + P1 + P2) / (1 + Z1 + Z2)
///
/// P1, P2 and Z1, Z2 are the matched pairs of the poles' and the zeros' frequency and damping; the
/// period is the clock's when they are worked out. With one frequency and undamped zeros it is a
/// true notch: its zeros lie on the unit circle.
///
/// Frequencies in Hz and dampings are 0 or above. Zeros at 0 Hz leave no gain at DC to scale, so
/// their gain is that of the limit in which poles and zeros approach 0 Hz together: 1.
class ZelDNotch final : public ZelDSecondOrder {
 public:
  /// A true notch. `initial` is the output before the first step.
  ZelDNotch(const ZelDController* clock, double frequencyHz, double damping, double initial = 0.0);

  /// The general form.
  ZelDNotch(const ZelDController* clock, double poleHz, double poleDamping, double zeroHz,
            double zeroDamping, double initial);

  void ComputeCoefficients() override;

  /// Frequency of poles and zeros alike.
  void SetFrequency(double hz);
  /// Frequency of the zeros alone.
  void SetZeroFrequency(double hz);
  /// Damping of the poles.
  void SetDamping(double damping);

 private:
  double poleOmega_;
  double zeroOmega_;
  double poleZeta_;
  double zeroZeta_;
};

}  // namespace torvane
