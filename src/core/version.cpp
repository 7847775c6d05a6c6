#include "core/version.h"

namespace torvane {

// The build defines it for this file alone, so that a new version recompiles nothing else.
const char* Version() {
  return TORVANE_VERSION;
}

}  // namespace torvane
