#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <span>

#include "core/constant.h"
#include "library/d_controller.h"
#include "library/d_pi_plus.h"
#include "library/d_pid.h"
#include "support/bare_model.h"
#include "support/recorder.h"

// The sampled controllers, sample by sample. kVI T = 1/8 at kVI = 128, kVD / T = 2, and the PID's
// derivative filter halves its distance each sample: most numbers are exact in binary.

namespace torvane {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

struct Sample {
  double KVI;
  double Command, Feedback, FeedForward;
  double Output;
};

class SampledControllers : public testing::Test {
 protected:
  ZelDPi& Pi() { return clock_.Add<ZelDPi>(&kVI_, &kVP_, 20.0, 1.25); }
  ZelDPiPlus& PiPlus() { return clock_.Add<ZelDPiPlus>(&kVI_, &kVP_, &kVFR_, 20.0, 1.25); }
  ZelDPid& Pid() { return clock_.Add<ZelDPid>(&kVI_, &kVP_, &kVD_, &fraction_, &fD_, 20.0, 1.25); }

  /// Steps a controller through the samples. No controller has a preferred direction.
  template <class Make>
  void Script(const Make& make, std::initializer_list<Sample> samples) {
    for (const double sign : {1.0, -1.0}) {
      auto& controller = make();
      int index = 0;
      for (const Sample& s : samples) {
        kVI_.Set(s.KVI);
        EXPECT_NEAR(controller.Update(sign * s.Command, sign * s.Feedback, sign * s.FeedForward),
                    sign * s.Output, 1e-14)
            << "sample " << index << " with sign " << sign;
        ++index;
      }
    }
  }

  test::BareModel model_;
  Constant kVI_{model_.Bench(), "KVI", "", 128.0, 0.0, 10000.0};
  Constant kVP_{model_.Bench(), "KVP", "", 2.0, 0.0, 1000.0};
  Constant kVFR_{model_.Bench(), "KVFR", "%", 50.0, -100.0, 200.0};
  Constant kVD_{model_.Bench(), "KVD", "", 1.0 / 512.0, 0.0, 1.0};
  Constant fraction_{model_.Bench(), "KVFR", "", 1.0, 0.0, 1.0};
  Constant fD_{model_.Bench(), "fD", "Hz", std::log(2.0) * 1024.0 / 6.2831852, 1.0, 10000.0};
  ZelDController clock_{model_.Bench(), 1.0 / 1024.0};
};

TEST_F(SampledControllers, PiLimitsItsOutputAndPastTheWindUpLevelItsIntegrator) {
  Script([&]() -> ZelDPi& { return Pi(); },
         {{128, 10, 2, 0, 18},  // e 8, integrator 1
          {128, 10, 2, 0, 20},  // exactly the limit; integrator 2
          {128, 10, 2, 0, 20},  // 22 is cut; integrator 3
          {128, 10, 2, 1, 20},  // 25 is exactly the level: the integrator keeps its 4
          {128, 2, 2, 0, 8},    //
          {128, 10, 2, 3, 20},  // 29 > 25: integrator 12.5 - 8, without the feed-forward
          {128, 2, 2, 0, 9},    //
          {256, 4, 0, 0, 10},   // another integral gain empties the integrator, once
          {256, 0, 0, 0, 2},    //
          {0, 4, 0, 0, 8},      // without one there is none
          {0, 40, 0, 0, 20},    //
          {128, 0, 0, 0, 0}});
  // Without proportional gain the integrator cannot reach the output and stays as it is.
  kVP_.Set(0.0);
  ZelDPi& pi = Pi();
  EXPECT_EQ(pi.Update(8, 0, 100), 20.0);
  kVP_.Set(2.0);
  EXPECT_EQ(pi.Update(0, 0, 0), 2.0);
  EXPECT_EQ(pi.Update(3, 1, 0), 6.5);
  EXPECT_EQ(pi.Error(), 2.0);
}

TEST_F(SampledControllers, PiPlusShapesItsCommand) {
  Script([&]() -> ZelDPiPlus& { return PiPlus(); },
         {{128, 18, 2, 0, 18},       // (0.625 * 18) / 1.125 = 10; e 8, integrator 1
          {128, 18, 5, 0.5, 15.75},  // (0.625 * 18 + 10 - 0.5 * 18) / 1.125 = 98/9
          {0, 10, 1, 0, 8}});        // half of the command, whatever was filtered before
}

TEST_F(SampledControllers, PidAddsItsTermsAndBalancesErrorAndIntegratorAlone) {
  const auto pid = [&]() -> ZelDPid& { return Pid(); };
  Script(pid, {{128, 2, 0, 0, 8.5},   // e 2, integrator 0.25, derivative 4 / 2 = 2
               {128, 2, 0, 0, 7},     // integrator 0.5, derivative 1
               {128, 2, 2, 3, 1},     // e 0, integrator 0.5, derivative -2 + 0.5
               {128, 8, 0, 1, 20},    // 53.5 > 25: integrator 12.5 - 8
               {128, 8, 8, 0, 0.25},  // derivative 7.25 / 2 - 8
               {256, 0, 0, 0, -4.375}});
  // A filtered command but for its direct fraction.
  fraction_.Set(0.25);
  kVI_.Set(128.0);
  ZelDPid& filtering = Pid();
  for (int n = 0; n < 5; ++n) filtering.Update(8, 1, 0);
  const double filtered = 8.0 * (1.0 - std::exp(-0.625));
  EXPECT_NEAR(filtering.Error(), 2.0 + 0.75 * filtered - 1.0, 1e-14);
  kVI_.Set(0.0);  // the filter stands still
  filtering.Update(0, 0, 0);
  EXPECT_NEAR(filtering.Error(), 0.75 * filtered, 1e-14);
}

TEST_F(SampledControllers, ForgetAnOverflowButNothingElseInAReset) {
  const auto check = [&](auto& controller) {
    const double first = controller.Update(4, 1, 0);
    model_.Reset();
    EXPECT_NE(controller.Update(4, 1, 0), first);
    controller.Update(Infinity, 0, 0);
    EXPECT_TRUE(std::isnan(controller.Update(4, 1, 0)));
    model_.Reset();
    EXPECT_EQ(controller.Update(4, 1, 0), first);
  };
  kVI_.Set(100.0);
  PiPlus().Update(0, 0, 0);  // takes the change of the gain
  check(PiPlus());
  check(Pid());
}

TEST_F(SampledControllers, ReportWhatIsMissingAndCanBeSteppedAllTheSame) {
  test::Recorder recorder;
  const auto expect = [&](const std::string& family, std::initializer_list<const char*> gains,
                          bool clock) {
    test::Messages expected;
    for (const char* gain : gains) {
      expected.push_back("Error: Constant " + std::string(gain) + " in " + family +
                         " not initialized.");
    }
    if (clock) expected.emplace_back("Error: DController in ZelPI_Plus not initialized.");
    EXPECT_EQ(recorder.Take(), expected);
  };
  ZelDPiPlus plus(nullptr, nullptr, nullptr, nullptr, 20.0, 1.2);
  expect("ZelPI_Plus", {"kVI", "kVP", "kVFR"}, true);
  ZelDPi plain(nullptr, nullptr, nullptr, 20.0, 1.2);
  expect("ZelPI_Plus", {"kVI", "kVP"}, false);
  ZelDPid pid(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 20.0, 1.2);
  expect("ZelPid", {"kVI", "kVP", "kVD", "kVFR", "fDHz"}, true);
  EXPECT_EQ(plus.Update(1, 0, 0) + plain.Update(1, 0, 0) + pid.Update(1, 0, 0), 0.0);
  // No command gets through without kVFR; a PID without kVI and kVD is proportional.
  EXPECT_EQ(clock_.Add<ZelDPiPlus>(nullptr, &kVP_, nullptr, 20.0, 1.2).Update(5, 1, 0), -2.0);
  EXPECT_EQ(
      clock_.Add<ZelDPid>(nullptr, &kVP_, nullptr, &fraction_, nullptr, 20.0, 1.2).Update(5, 1, 0),
      8.0);
}

}  // namespace
}  // namespace torvane
