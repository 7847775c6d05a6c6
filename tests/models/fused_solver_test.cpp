#include "models/fused_solver.h"

#include <gtest/gtest.h>

#include "core/model.h"
#include "library/low_pass1.h"
#include "models/loop_parts.h"
#include "support/recorder.h"

namespace torvane {
namespace {

/// Lists its integrator, but not its filter.
class ForgetfulModel final : public ZelModel {
 public:
  ForgetfulModel() : ZelModel("Forgetful") {}
  void Derivatives(double t) override { solver_.Derivatives(t); }

 private:
  friend class FusedSolver<ForgetfulModel>;

  struct Loop : OnBench {
    using OnBench::OnBench;

    StateVariable x{Bench(), "x", "", 0.0};
    ZelLowPass1 filter{Bench(), 10.0};
  };
  void Equations(Loop& s, double /*t*/) { s.x.Derivative = s.filter.Output(); }
  auto Parts(Loop& s) { return std::tie(s.x); }

  FusedSolver<ForgetfulModel>& solver_ =
      SetSolver(std::make_unique<FusedSolver<ForgetfulModel>>(Bench(), 1e-3, *this));
  TimeVariable time_{Bench(), "Time", "sec", {}};
  Loop loop_{Bench()};
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
