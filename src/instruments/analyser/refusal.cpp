#include "instruments/analyser/refusal.h"

#include "core/messages.h"

namespace torvane {

bool IsRefused(const SetupFinding& finding) {
  if (finding.What != SetupFinding::Kind::Refusal) return false;
  Error(finding.Text);
  return true;
}

}  // namespace torvane
