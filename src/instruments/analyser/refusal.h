#pragma once

#include "instruments/analyser/setup_finding.h"

namespace torvane {

/// Reports a refused set-up; false for any other.
bool IsRefused(const SetupFinding& finding);

}  // namespace torvane
