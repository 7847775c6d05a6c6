#include "linear/stability.h"

#include <gtest/gtest.h>

namespace torvane::test {
namespace {

// Whether it is so follows from the equations that stand beside each case.
TEST(StabilityOf, TellsIntegratorsInAChainFromThoseBesideEachOther) {
  using enum Stability::Verdict;
  Eigen::Matrix4d twice = Eigen::Matrix4d::Zero();
  twice << 0, 3, 0, 0, -3, 0, 0, 0, 0, 0, 0, 3, 0, 0, -3, 0;
  Eigen::Matrix4d driven = twice;
  driven(3, 0) = 1e-3;
  Eigen::Matrix4d near = driven;
  near(2, 3) = 3.00001;
  const struct {
    const char* Loop;
    Eigen::MatrixXd A;
    double Ts;
    Stability::Verdict Is;
  } cases[] = {
      {"nothing", Eigen::MatrixXd(0, 0), 0.0, NoPoles},
      {"two lags", Eigen::Matrix2d{{-1, 0}, {1, -1e5}}, 0.0, Stable},
      {"an integrator behind a lag", Eigen::Matrix2d{{-5, 0}, {1, 0}}, 0.0, Limit},
      {"two beside each other", Eigen::Matrix2d{{0, 0}, {0, 0}}, 0.0, Limit},
      {"a slow chain", Eigen::Matrix2d{{0, 0}, {1e-6, 0}}, 0.0, Unstable},
      {"through a lag", Eigen::Matrix3d{{0, 0, 0}, {1, -5, 0}, {0, 1e6, 0}}, 0.0, Unstable},
      {"through s/(s + 5)", Eigen::Matrix3d{{0, 0, 0}, {1, -5, 0}, {1, -5, 0}}, 0.0, Limit},
      {"two undamped pairs", twice, 0.0, Limit},
      {"one drives the other", driven, 0.0, Unstable},
      {"one drives one that beats with it", near, 0.0, Limit},
      {"a pair that grows", Eigen::Matrix2d{{0.1, 3}, {-3, 0.1}}, 0.0, Unstable},
      {"sampled, both held", Eigen::Matrix2d{{1, 0}, {0, 1}}, 1e-3, Limit},
      {"sampled, summed up", Eigen::Matrix2d{{1, 0}, {1e-3, 1}}, 1e-3, Unstable},
      {"two samples' delay", Eigen::Matrix2d{{0, 0}, {1, 0}}, 1e-3, Stable},
  };
  for (const auto& one : cases) {
    const Eigen::Index n = one.A.rows();
    const LinearSystem system{one.A, Eigen::VectorXd::Zero(n), Eigen::MatrixXd::Zero(1, n),
                              Eigen::VectorXd::Zero(1), one.Ts};
    const Stability found = StabilityOf(system);
    EXPECT_EQ(found.Is, one.Is) << one.Loop << ": " << found.Text;
  }
}

}  // namespace
}  // namespace torvane::test
