#include "linear/stability.h"

#include <gtest/gtest.h>

#include <complex>
#include <numbers>

#include "linear/linear_model.h"

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

TEST(LinearModel, HasAResponseUnlessSomethingGrowsOrRingsOn) {
  const auto answers = [](const Eigen::Matrix2d& a) {
    const Eigen::Vector2d ones(1.0, 1.0);
    const LinearSystem system{a, ones, ones.transpose(), Eigen::VectorXd::Zero(1)};
    return LinearModel({"y"}, system).HasResponse();
  };
  EXPECT_TRUE(answers(Eigen::Matrix2d{{-1, 0}, {0, -2}}));
  EXPECT_TRUE(answers(Eigen::Matrix2d{{0, 0}, {0, -2}})) << "an integrator";
  EXPECT_FALSE(answers(Eigen::Matrix2d{{0, 3}, {-3, 0}})) << "rings on";
  EXPECT_FALSE(answers(Eigen::Matrix2d{{0.1, 0}, {0, -2}})) << "grows";
}

// Three steps a sample, driven step by step until what was there in the beginning has died away:
// 0.28^60 of it is left. The signals are read at the end of each step.
TEST(LinearModel, AnswersASineAsItsStepsDo) {
  const auto map = [](double a, double b) {
    return LinearModel::StepMap{Eigen::MatrixXd::Constant(1, 1, a),
                                Eigen::VectorXd::Constant(1, b)};
  };
  const std::vector<LinearModel::StepMap> steps{map(0.5, 1.0), map(0.8, 0.3), map(0.7, -0.2)};
  constexpr double step = 1e-3;
  const LinearModel linear({"y"}, steps, Eigen::MatrixXd::Constant(1, 1, 2.0), step);
  for (const double hz : {3.0, 40.0, 130.0}) {
    const std::complex<double> turn = std::polar(1.0, 2.0 * std::numbers::pi * hz * step);
    std::complex<double> x = 0.0;
    std::complex<double> command = 1.0;
    std::complex<double> mean = 0.0;
    for (int sample = 0; sample <= 60; ++sample) {
      mean = 0.0;
      for (const auto& one : steps) {
        x = one.A(0, 0) * x + one.B[0] * command;
        command *= turn;
        mean += 2.0 * x / command / 3.0;
      }
    }
    EXPECT_NEAR(std::abs(linear.ToSine(hz, {0})[0] - mean), 0.0, 1e-12) << hz;  // rounding
  }
  EXPECT_TRUE(linear.Moves(0));
  EXPECT_FALSE(
      LinearModel({"y"}, {map(0.5, 1.0), map(1.0, 0.0)}, Eigen::MatrixXd::Constant(1, 1, 2.0), step)
          .Moves(0));
}

}  // namespace
}  // namespace torvane::test
