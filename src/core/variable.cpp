#include "core/variable.h"

#include <utility>

#include "core/bench.h"

namespace torvane {

Variable::Variable(Kind kind, std::string name, std::string unit, DisplayDefaults display,
                   Visibility visibility)
    : identity_(std::make_unique<Identity>(
          Identity{kind, std::move(name), std::move(unit), display, visibility, {}})) {}

Variable::Variable(ZelBenchTop& bench, std::string name, std::string unit, DisplayDefaults display,
                   Visibility visibility)
    : Variable(Kind::Plain, std::move(name), std::move(unit), display, visibility) {
  bench.AddVar(*this);
}

TimeVariable::TimeVariable(ZelBenchTop& bench, std::string name, std::string unit,
                           DisplayDefaults display)
    : Variable(Kind::Time, std::move(name), std::move(unit), display, Visibility::Offered) {
  bench.SetTimeVar(*this);
}

StateVariable::StateVariable(ZelBenchTop& bench, std::string name, std::string unit,
                             double initialValue, DisplayDefaults display, Visibility visibility)
    : Variable(Kind::State, std::move(name), std::move(unit), display, visibility),
      InitialValue(initialValue) {
  Value = initialValue;
  bench.AddVar(*this);
  bench.AddStateVar(*this);
}

}  // namespace torvane
