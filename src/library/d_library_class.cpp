#include "library/d_library_class.h"

#include "library/d_controller.h"

namespace torvane {

double ZelDLibraryClass::Period() const {
  return clock_ ? clock_->Period() : 0.0;
}

}  // namespace torvane
