#include "library/d_pid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/constant.h"
#include "library/d_controller.h"
#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

// kVI T = 1/8, kVD / T = 2, kVP = 2, and a derivative filter that halves its distance each sample.
class DPidTest : public testing::Test {
 protected:
  ZelDPid& Make(double limit, double windUpFactor) {
    return clock_.Add<ZelDPid>(&kVI_, &kVP_, &kVD_, &kVFR_, &fD_, limit, windUpFactor);
  }

  test::BareModel model_;
  Constant kVI_{model_.Bench(), "KVI", "", 128.0, 0.0, 10000.0};
  Constant kVP_{model_.Bench(), "KVP", "", 2.0, 0.0, 1000.0};
  Constant kVD_{model_.Bench(), "KVD", "", 1.0 / 512.0, 0.0, 1.0};
  Constant kVFR_{model_.Bench(), "KVFR", "", 1.0, 0.0, 1.0};
  Constant fD_{model_.Bench(), "fD", "Hz", std::log(2.0) * 1024.0 / 6.2831852, 1.0, 10000.0};
  ZelDController clock_{model_.Bench(), 1.0 / 1024.0};
};

// exp(-fD) is one half to a unit or two in the last place.
constexpr double Rounding = 1e-14;

TEST_F(DPidTest, AddsErrorIntegralAndFilteredDerivative) {
  ZelDPid& pid = Make(100.0, 1.2);
  EXPECT_NEAR(pid.Update(4, 0, 0), 17.0, Rounding);  // e 4, integrator 0.5, derivative 8 / 2 = 4
  EXPECT_NEAR(pid.Update(4, 0, 0), 14.0, Rounding);  // e 4, integrator 1, derivative 2
  EXPECT_NEAR(pid.Update(4, 4, 3), -1.0, Rounding);  // e 0, integrator 1, derivative -4 + 1
  EXPECT_EQ(pid.Error(), 0.0);
}

TEST_F(DPidTest, FiltersTheCommandButForItsDirectFraction) {
  kVFR_.Set(0.25);
  ZelDPid& pid = Make(100.0, 1.2);
  for (int n = 1; n <= 5; ++n) {
    pid.Update(8, 1, 0);
    EXPECT_NEAR(pid.Error(), 2.0 + 6.0 * (1.0 - std::exp(-0.125 * n)) - 1.0, Rounding) << n;
  }
  kVI_.Set(0.0);  // the filter stands still
  pid.Update(0, 0, 0);
  EXPECT_NEAR(pid.Error(), 6.0 * (1.0 - std::exp(-0.625)), Rounding);
}

TEST_F(DPidTest, WindUpBalanceLeavesDerivativeAndFeedForwardOut) {
  for (const double sign : {1.0, -1.0}) {
    ZelDPid& pid = Make(10.0, 1.25);
    // 17 + 1 > 12.5: integrator 6.25 - 4.
    EXPECT_EQ(pid.Update(sign * 4, 0, sign * 1), sign * 10.0);
    // e 0, derivative -4 + 2.
    EXPECT_NEAR(pid.Update(sign * 4, sign * 4, 0), sign * 0.5, Rounding);
  }
}

TEST_F(DPidTest, AChangedIntegralGainEmptiesTheIntegratorAndAResetAnOverflow) {
  kVD_.Set(0.0);
  ZelDPid& pid = Make(10.0, 1.25);
  EXPECT_EQ(pid.Update(2, 0, 0), 4.5);
  kVI_.Set(256.0);
  EXPECT_EQ(pid.Update(2, 0, 0), 5.0);
  EXPECT_EQ(pid.Update(0, 0, 0), 1.0);
  pid.Update(std::numeric_limits<double>::infinity(), 0, 0);
  EXPECT_TRUE(std::isnan(pid.Update(2, 0, 0)));
  model_.Reset();
  EXPECT_EQ(pid.Update(2, 0, 0), 5.0);
  kVI_.Set(0.0);
  EXPECT_EQ(pid.Update(2, 0, 0), 4.0);
  EXPECT_EQ(pid.Update(2, 0, 0), 4.0);
}

TEST_F(DPidTest, ReportsWhatIsMissingAndCanBeSteppedAllTheSame) {
  test::Recorder recorder;
  ZelDPid unclocked(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 20.0, 1.2);
  EXPECT_EQ(recorder.Take(), (test::Messages{"Error: Constant kVI in ZelPid not initialized.",
                                             "Error: Constant kVP in ZelPid not initialized.",
                                             "Error: Constant kVD in ZelPid not initialized.",
                                             "Error: Constant kVFR in ZelPid not initialized.",
                                             "Error: Constant fDHz in ZelPid not initialized.",
                                             "Error: DController in ZelPI_Plus not initialized."}));
  EXPECT_EQ(unclocked.Update(1, 0, 0), 0.0);
  auto& gainless = clock_.Add<ZelDPid>(nullptr, &kVP_, nullptr, &kVFR_, nullptr, 20.0, 1.2);
  EXPECT_EQ(gainless.Update(5, 1, 0), 8.0);
  EXPECT_EQ(gainless.Step(5.0), 0.0);
}

}  // namespace
}  // namespace torvane
