#include "instruments/analyser/analyser_channel.h"

namespace torvane {

std::string AnalyserChannel::Label() const {
  if (variable_.Unit().empty()) return variable_.Name();
  return variable_.Name() + " (" + variable_.Unit() + ")";
}

}  // namespace torvane
