#pragma once

#include "instruments/analyser/analyser.h"

namespace torvane {

/// As ReadCurve, of some of the slot's points. There has to be data.
void ReadCurvePart(FrequencyAnalyser& analyser, int slot, FrequencyAnalyser::Indices points,
                   ResponseCurve& curve);

}  // namespace torvane
