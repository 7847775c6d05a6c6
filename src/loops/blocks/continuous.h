#pragma once

#include <tuple>
#include <vector>

#include "core/time_driven.h"
#include "core/variable.h"
#include "loops/block_type.h"

namespace torvane::loops {

// The continuous blocks of the library, as the built-in models have them: each evaluation leaves
// outputs for the next one.

/// Lends a library block its states from the registers. The derived class sets parameters, and
/// offers TakeInputs and HandOutputs of a library block.
template <class Derived, class Library>
class LibraryBlock : public Block {
 public:
  void Update(const Moment& /*now*/) override { Evaluate(library_); }

  void Reset() final { library_.FollowReset(ResetKind::Everything); }

  void Carry(Carried& carried) final { carried.Keep(library_); }

  void FollowStates() final {
    Self().TakeInputs(library_);
    LendStates(library_);
    library_.FollowReset(ResetKind::States);
    Self().HandOutputs(library_);
  }

 protected:
  LibraryBlock(const Wiring& wiring, const Library& library)
      : wiring_(wiring), library_(library), states_(wiring.States()), slopes_(wiring.Slopes()) {}

  void Evaluate(Library& block) {
    Self().TakeInputs(block);
    LendStates(block);
    block.Evaluate();
    std::apply(
        [this](const auto&... state) {
          double* slope = slopes_;
          ((*slope++ = state.Derivative), ...);
        },
        block.States());
    Self().HandOutputs(block);
  }

  const Wiring wiring_;
  Library library_;

 private:
  Derived& Self() { return static_cast<Derived&>(*this); }

  void LendStates(Library& block) {
    std::apply(
        [this](auto&... state) {
          const double* value = states_;
          ((state.Value = *value++), ...);
        },
        block.States());
  }

  const double* states_;
  double* slopes_;
};

/// Torvane.Continuous.LowPass1, LowPass2, Notch, TwoPoleTwoZero and Torvane.Mechanics.TwoInertia.
std::vector<BlockType> LibraryBlockTypes();

}  // namespace torvane::loops
