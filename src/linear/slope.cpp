#include "linear/slope.h"

#include <cmath>
#include <limits>

namespace torvane {

namespace {

constexpr int Decades = 9;
constexpr double Agrees = 1e-10;
// Of the numbers that a difference was taken of; a step adds up a few dozen terms.
constexpr double Rounding = 64.0 * std::numeric_limits<double>::epsilon();

struct Difference {
  Eigen::VectorXd Central;
  Eigen::VectorXd Noise;  // what rounding alone may have made
  Eigen::VectorXd Up;
  Eigen::VectorXd Down;
};

double Largest(const Eigen::VectorXd& values) {
  return values.size() > 0 ? values.cwiseAbs().maxCoeff() : 0.0;
}

// The largest part by which entries differ, beyond what rounding explains.
double Apart(const Eigen::VectorXd& a, const Eigen::VectorXd& b, const Eigen::VectorXd& noise) {
  double apart = 0.0;
  for (Eigen::Index i = 0; i < a.size(); ++i) {
    const double larger = std::max(std::abs(a[i]), std::abs(b[i]));
    const double beyond = std::abs(a[i] - b[i]) - noise[i];
    if (beyond > 0.0 && larger > 0.0) apart = std::max(apart, beyond / larger);
  }
  return apart;
}

Difference Differ(const std::function<Eigen::VectorXd(double)>& follow, double step) {
  Difference found;
  found.Up = follow(step);
  found.Down = follow(-step);
  found.Noise = (found.Up.cwiseAbs() + found.Down.cwiseAbs()) * (Rounding / (2.0 * step));
  found.Central = (found.Up - found.Down) / (2.0 * step);
  for (Eigen::Index i = 0; i < found.Central.size(); ++i) {
    if (std::abs(found.Central[i]) <= found.Noise[i]) found.Central[i] = 0.0;
  }
  return found;
}

double Bend(const Difference& found, const Eigen::VectorXd& still, double step) {
  return Apart((found.Up - still) / step, (still - found.Down) / step, 4.0 * found.Noise);
}

}  // namespace

Slope FindSlope(const std::function<Eigen::VectorXd(double)>& follow, double scale) {
  const Eigen::VectorXd still = follow(0.0);
  Slope best;
  best.Disagreement = std::numeric_limits<double>::infinity();
  double step = scale;
  for (int decade = 0; decade < Decades && best.Disagreement > Agrees; ++decade, step /= 10.0) {
    const Difference whole = Differ(follow, step);
    const Difference quarter = Differ(follow, 0.25 * step);
    const bool finite = std::isfinite(Largest(whole.Central));
    const double apart = finite ? Apart(whole.Central, quarter.Central, quarter.Noise)
                                : std::numeric_limits<double>::infinity();
    if (apart < best.Disagreement || decade == 0) {
      best = {whole.Central, step, apart, Bend(whole, still, step)};
    }
  }
  return best;
}

Eigen::VectorXd SlopeAt(const std::function<Eigen::VectorXd(double)>& follow, double step) {
  return Differ(follow, step).Central;
}

}  // namespace torvane
