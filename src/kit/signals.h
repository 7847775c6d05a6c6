#pragma once

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "core/variable.h"

namespace torvane {

/// A signal of a loop: the number that it stands for, its name and unit, how a new instrument shows
/// it, and what it is in a sentence for the user.
struct Signal {
  Signal(double& number, std::string name, std::string unit, DisplayDefaults display,
         std::string description)
      : Number(&number),
        Name(std::move(name)),
        Unit(std::move(unit)),
        Display(display),
        Description(std::move(description)) {}
  /// One that the solver integrates, from 0.
  Signal(State& state, std::string name, std::string unit, DisplayDefaults display,
         std::string description)
      : Number(&state),
        Name(std::move(name)),
        Unit(std::move(unit)),
        Display(display),
        Description(std::move(description)) {}

  std::variant<double*, State*> Number;
  std::string Name;
  std::string Unit;
  DisplayDefaults Display;
  std::string Description;
};

/// The signals of a loop, registered with the model's bench one after the other.
class Signals {
 public:
  Signals(ZelBenchTop& bench, const std::vector<Signal>& signals);

 private:
  std::vector<std::unique_ptr<Variable>> variables_;
};

}  // namespace torvane
