#pragma once

#include "instruments/scope/scope_trigger.h"

namespace torvane {

/// A scope's trigger lamp: an event lights it for five display refreshes. All lamps of a
/// thread share one counter, so an event of one scope lengthens the light of another that is lit.
class TriggerLamp {
 public:
  /// One display refresh; takes the trigger's fired flag.
  void Refresh(ZelTrigger& trigger) {
    if (trigger.ConsumeFired()) {
      counter_ = RefreshesLit;
      lit_ = true;
    }
    if (counter_ <= 0) {
      lit_ = false;
    } else {
      --counter_;
    }
  }

  bool Lit() const { return lit_; }

 private:
  static constexpr int RefreshesLit = 5;
  inline static constinit thread_local int counter_ = 0;
  bool lit_ = false;
};

}  // namespace torvane
