#include "library/d_pi_plus.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/constant.h"
#include "library/d_controller.h"
#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

// kVI T = 1/8 and kVP = 2: the plain PI's numbers are exact in binary.
class DPiTest : public testing::Test {
 protected:
  ZelDPi& MakePi() { return clock_.Add<ZelDPi>(&kVI_, &kVP_, 20.0, 1.25); }
  ZelDPiPlus& MakePiPlus() { return clock_.Add<ZelDPiPlus>(&kVI_, &kVP_, &kVFR_, 20.0, 1.25); }

  test::BareModel model_;
  Constant kVI_{model_.Bench(), "KVI", "", 128.0, 0.0, 10000.0};
  Constant kVP_{model_.Bench(), "KVP", "", 2.0, 0.0, 1000.0};
  Constant kVFR_{model_.Bench(), "KVFR", "%", 50.0, -100.0, 200.0};
  ZelDController clock_{model_.Bench(), 1.0 / 1024.0};
};

TEST_F(DPiTest, LimitsTheOutputAtLAndTheIntegratorAtLTimesFStrictly) {
  for (const double sign : {1.0, -1.0}) {
    ZelDPi& pi = MakePi();
    const auto update = [&](double c, double f, double ff) {
      return sign * pi.Update(sign * c, sign * f, sign * ff);
    };
    EXPECT_EQ(update(10, 2, 0), 18.0);  // e 8, integrator 1
    EXPECT_EQ(sign * pi.Error(), 8.0);
    EXPECT_EQ(update(10, 2, 0), 20.0);  // exactly L; integrator 2
    EXPECT_EQ(update(10, 2, 0), 20.0);  // 22 is cut; integrator 3
    EXPECT_EQ(update(10, 2, 1), 20.0);  // 25 is exactly L F: the integrator keeps its 4
    EXPECT_EQ(update(2, 2, 0), 8.0);
    EXPECT_EQ(update(10, 2, 3), 20.0);  // 29 > 25: integrator 12.5 - 8, without the feed-forward
    EXPECT_EQ(update(2, 2, 0), 9.0);
  }
}

TEST_F(DPiTest, AChangedIntegralGainEmptiesTheIntegratorOnce) {
  ZelDPi& pi = MakePi();
  EXPECT_EQ(pi.Update(8, 0, 0), 18.0);
  kVI_.Set(256.0);
  EXPECT_EQ(pi.Update(4, 0, 0), 10.0);  // integrator 0 + 1
  EXPECT_EQ(pi.Update(0, 0, 0), 2.0);
  kVI_.Set(0.0);
  EXPECT_EQ(pi.Update(4, 0, 0), 8.0);
  EXPECT_EQ(pi.Update(4, 0, 0), 8.0);
  kVI_.Set(128.0);
  EXPECT_EQ(pi.Update(0, 0, 0), 0.0);
}

TEST_F(DPiTest, PlusShapesTheCommandWithTheBackwardEulerFilter) {
  ZelDPiPlus& controller = MakePiPlus();
  // Filtered command (0.625 * 18) / 1.125 = 10; e 8, integrator 1.
  EXPECT_DOUBLE_EQ(controller.Update(18, 2, 0), 18.0);
  // (0.625 * 18 + 10 - 0.5 * 18) / 1.125 = 98/9; e 53/9, integrator 125/72.
  EXPECT_DOUBLE_EQ(controller.Update(18, 5, 0), 15.25);
  EXPECT_DOUBLE_EQ(controller.Error(), 53.0 / 9.0);
  // No integral gain: half of the command, whatever was filtered before.
  kVI_.Set(0.0);
  EXPECT_DOUBLE_EQ(controller.Update(10, 1, 0), 8.0);
}

TEST_F(DPiTest, PlusWithAllTheCommandFedForwardIsAPlainPi) {
  kVFR_.Set(100.0);
  ZelDPi& pi = MakePi();
  ZelDPiPlus& plus = MakePiPlus();
  for (const double command : {5.0, 3.0, -7.0, 0.25, 100.0}) {
    plus.Update(command, 0.5, 0.0);
    pi.Update(command, 0.5, 0.0);
    // Rounding of 0.01 * 100 and of the filter's sum of up to 100.
    EXPECT_NEAR(plus.Error(), pi.Error(), 1e-13);
  }
}

TEST_F(DPiTest, WithoutProportionalGainTheIntegratorStaysFinite) {
  kVP_.Set(0.0);
  ZelDPi& pi = MakePi();
  EXPECT_EQ(pi.Update(8, 0, 100), 20.0);
  kVP_.Set(2.0);
  EXPECT_EQ(pi.Update(0, 0, 0), 2.0);
}

TEST_F(DPiTest, AResetForgetsAnOverflow) {
  ZelDPiPlus& controller = MakePiPlus();
  controller.Update(std::numeric_limits<double>::infinity(), 0, 0);
  EXPECT_TRUE(std::isnan(controller.Update(18, 2, 0)));
  model_.Reset();
  EXPECT_DOUBLE_EQ(controller.Update(18, 2, 0), 18.0);
}

TEST_F(DPiTest, ReportsWhatIsMissingAndCanBeSteppedAllTheSame) {
  test::Recorder recorder;
  ZelDPiPlus unclocked(nullptr, nullptr, nullptr, nullptr, 20.0, 1.2);
  EXPECT_EQ(recorder.Take(), (test::Messages{"Error: Constant kVI in ZelPI_Plus not initialized.",
                                             "Error: Constant kVP in ZelPI_Plus not initialized.",
                                             "Error: Constant kVFR in ZelPI_Plus not initialized.",
                                             "Error: DController in ZelPI_Plus not initialized."}));
  EXPECT_EQ(unclocked.Update(1, 0, 0), 0.0);
  ZelDPi plain(nullptr, nullptr, nullptr, 20.0, 1.2);
  EXPECT_EQ(recorder.Take(),
            (test::Messages{"Error: Constant kVI in ZelPI_Plus not initialized.",
                            "Error: Constant kVP in ZelPI_Plus not initialized."}));
  EXPECT_EQ(plain.Update(1, 0, 0), 0.0);
  auto& gainless = clock_.Add<ZelDPiPlus>(nullptr, &kVP_, nullptr, 20.0, 1.2);
  EXPECT_EQ(gainless.Update(5, 1, 0), -2.0);  // no command gets through
  EXPECT_EQ(gainless.Step(5.0), 0.0);
}

}  // namespace
}  // namespace torvane
