#include "library/d_library_class.h"

#include "core/carried.h"
#include "library/d_controller.h"
#include "library/forget.h"

namespace torvane {

void ZelDLibraryClass::Reset(ResetKind kind) {
  Forget(kind, PastValues());
}

void ZelDLibraryClass::Carry(Carried& carried) {
  for (double* const value : PastValues()) carried.Number(*value);
}

double ZelDLibraryClass::Period() const {
  return clock_ ? clock_->Period() : 0.0;
}

}  // namespace torvane
