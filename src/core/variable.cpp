#include "core/variable.h"

#include <utility>

#include "core/bench.h"
#include "core/text.h"

namespace torvane {

Variable::Variable(double* number, std::string name, std::string unit, DisplayDefaults display,
                   Visibility visibility, const std::string& description)
    : name_(std::move(name)),
      unit_(std::move(unit)),
      description_(WithUnit(description, unit_)),
      display_(display),
      visibility_(visibility),
      Value(number ? *number : own_.Value) {}

Variable::Variable(ZelBenchTop& bench, double& number, std::string name, std::string unit,
                   DisplayDefaults display, Visibility visibility, const std::string& description)
    : Variable(&number, std::move(name), std::move(unit), display, visibility, description) {
  bench.AddVar(*this);
}

Variable::Variable(ZelBenchTop& bench, std::string name, std::string unit, DisplayDefaults display,
                   Visibility visibility)
    : Variable(nullptr, std::move(name), std::move(unit), display, visibility, {}) {
  bench.AddVar(*this);
}

TimeVariable::TimeVariable(ZelBenchTop& bench, std::string name, std::string unit,
                           DisplayDefaults display, const std::string& description)
    : Variable(nullptr, std::move(name), std::move(unit), display, Visibility::Offered,
               description) {
  bench.SetTimeVar(*this);
}

StateVariable::StateVariable(ZelBenchTop& bench, State* numbers, std::string name, std::string unit,
                             double initialValue, DisplayDefaults display, Visibility visibility,
                             const std::string& description)
    : Variable(numbers ? &numbers->Value : nullptr, std::move(name), std::move(unit), display,
               visibility, description),
      InitialValue(initialValue),
      Numbers(numbers ? *numbers : Own()) {
  Value = initialValue;
  bench.AddVar(*this);
  bench.AddStateVar(*this);
}

StateVariable::StateVariable(ZelBenchTop& bench, State& numbers, std::string name, std::string unit,
                             double initialValue, DisplayDefaults display, Visibility visibility,
                             const std::string& description)
    : StateVariable(bench, &numbers, std::move(name), std::move(unit), initialValue, display,
                    visibility, description) {}

StateVariable::StateVariable(ZelBenchTop& bench, std::string name, std::string unit,
                             double initialValue, DisplayDefaults display, Visibility visibility)
    : StateVariable(bench, nullptr, std::move(name), std::move(unit), initialValue, display,
                    visibility, {}) {}

}  // namespace torvane
