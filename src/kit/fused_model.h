#pragma once

#include <memory>
#include <string>

#include "core/carried.h"
#include "core/model.h"
#include "kit/fused_solver.h"
#include "kit/signals.h"
#include "kit/units.h"

namespace torvane {

/// Of a model that remembers nothing beside its loop.
struct NoMemory {
  void Carry(Carried& /*carried*/) {}
};

/// Base of a model that a FusedSolver steps, which says what such a model offers: its solver, of
/// the given step in seconds, and its time.
///
/// Memory is what the model's class remembers from one model to the next, once for each thread: a
/// struct that can be copied and lists itself (Carry). The equations find it in memory_. It is the
/// class's while they run, so that models of one class and thread go on from one another's, and
/// nobody else's once the model has been told to keep its own.
template <class Model, class Memory = NoMemory>
class FusedModel : public ZelModel, public Carrier {
 public:
  FusedModel(const std::string& name, double step)
      : ZelModel(name),
        solver_(SetSolver(std::make_unique<FusedSolver<Model>>(Bench(), step, *this))) {}

  void Derivatives(double t) final { solver_.Derivatives(t); }

  void DropClassMemory() override {
    memory_ = FirstMemory();
    GiveMemory();
  }
  void KeepOwnMemory() override {
    ZelModel::KeepOwnMemory();
    shared_ = false;
    memory_ = FirstMemory();
  }

  /// Before and after the equations run.
  void TakeMemory() {
    if (shared_) memory_ = ofClass_;
  }
  void GiveMemory() {
    if (shared_) ofClass_ = memory_;
  }

  void Carry(Carried& carried) override {
    carried.Keep(static_cast<Model&>(*this).loop_);
    memory_.Carry(carried);
  }

 protected:
  /// What the first model of the class finds.
  virtual Memory FirstMemory() const { return {}; }

  Memory memory_;

 private:
  friend class FusedSolver<Model>;

  inline static constinit thread_local Memory ofClass_{};

  bool shared_ = true;
  FusedSolver<Model>& solver_;
  TimeVariable time_{Bench(), "Time", "sec", TimeAxis, "Simulated time"};
};

}  // namespace torvane
