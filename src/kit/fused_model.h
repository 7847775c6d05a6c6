#pragma once

#include <memory>
#include <string>

#include "core/carried.h"
#include "core/model.h"
#include "kit/fused_solver.h"
#include "kit/signals.h"
#include "kit/units.h"

namespace torvane {

/// Base of a model that a FusedSolver steps, which says what such a model offers: its solver, of
/// the given step in seconds, and its time.
template <class Model>
class FusedModel : public ZelModel, public Carrier {
 public:
  FusedModel(const std::string& name, double step)
      : ZelModel(name),
        solver_(SetSolver(std::make_unique<FusedSolver<Model>>(Bench(), step, *this))) {}

  void Derivatives(double t) final { solver_.Derivatives(t); }

  void Carry(Carried& carried) final {
    carried.Keep(static_cast<Model&>(*this).loop_);
    CarryClassMemory(carried);
  }

 private:
  FusedSolver<Model>& solver_;
  TimeVariable time_{Bench(), "Time", "sec", TimeAxis, "Simulated time"};
};

}  // namespace torvane
