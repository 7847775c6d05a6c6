#include "kit/fused_solver.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "kit/fused_model.h"
#include "library/low_pass1.h"
#include "support/recorder.h"

// That a fused solver steps as the general one does is seen in every built-in model.

namespace torvane {
namespace {

/// Lists its integrator, but not its filter.
struct ForgetfulModel final : FusedModel<ForgetfulModel> {
  ForgetfulModel() : FusedModel("Forgetful", 1e-3) {}

  struct Loop {
    State x;
    LowPass1 filter{10.0};
  };
  Loop loop_;

  void Equations(Loop& s, double /*t*/) { s.x.Derivative = s.filter.Output(); }
  auto Parts(Loop& s) { return std::tie(s.x); }

  Signals signals_{Bench(), {{loop_.x, "x", "", {}, ""}}};
  OnBench<LowPass1> filter_{Bench(), loop_.filter};
};

TEST(FusedSolver, AForgottenPartEndsTheProgramBeforeTheFirstStep) {
  test::Recorder recorder;
  ForgetfulModel model;
  EXPECT_THROW(model.Solver().RunUntil(1.0), std::logic_error);
  EXPECT_TRUE(recorder.Ended);
  EXPECT_EQ(model.Time(), 0.0);
}

}  // namespace
}  // namespace torvane
