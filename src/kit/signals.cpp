#include "kit/signals.h"

namespace torvane {

Signals::Signals(ZelBenchTop& bench, const std::vector<Signal>& signals) {
  variables_.reserve(signals.size());
  for (const Signal& s : signals) {
    if (State* const* const state = std::get_if<State*>(&s.Number)) {
      variables_.push_back(std::make_unique<StateVariable>(
          bench, **state, s.Name, s.Unit, 0.0, s.Display, Visibility::Offered, s.Description));
    } else {
      variables_.push_back(std::make_unique<Variable>(bench, *std::get<double*>(s.Number), s.Name,
                                                      s.Unit, s.Display, Visibility::Offered,
                                                      s.Description));
    }
  }
}

}  // namespace torvane
