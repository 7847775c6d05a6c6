#include "core/overflow.h"

#include <algorithm>
#include <cfenv>
#include <cmath>

#include "core/bench.h"
#include "core/instrument.h"
#include "core/solver.h"
#include "core/text.h"

namespace torvane {

namespace {

bool Finite(const Variable* variable) {
  return std::isfinite(variable->Value);
}

std::string Named(const Variable& variable, const char* prefix = "") {
  return std::string(prefix) + (variable.IsState() ? "state \"" : "signal \"") + variable.Name() +
         "\"";
}

std::string NamedSource(const Instrument& source) {
  return "source \"" + source.Name() + "\"";
}

std::string WithValue(const std::string& what, double value, const char* when = "") {
  if (!std::isfinite(value)) return what;
  return what + " (value " + FormatShortest(value) + when + ")";
}

}  // namespace

void ClearOverflowFlag() {
  // Testing the flag is cheap, clearing it is not.
  if (OverflowRaised()) std::feclearexcept(FE_OVERFLOW);
}

void CheckSignals(const ZelBenchTop& bench, double largest) {
  for (const Variable* variable : bench.Variables()) {
    const double shown = std::max(std::abs(variable->Value), std::abs(variable->DisplayValue()));
    if (variable->Internal() || shown <= largest) continue;
    throw SolverOverflow(WithValue(Named(*variable), variable->Value) +
                         " grew beyond what instruments can hold at time " +
                         FormatShortest(bench.Time()) + " s");
  }
}

void OverflowWatch::Begin() {
  found_.clear();
  before_.clear();
  for (const Variable* variable : bench_.Variables()) before_.push_back(variable->Value);
  ClearOverflowFlag();
}

void OverflowWatch::Equations() {
  if (!found_.empty() || FindSignal() || FindSlope() || !OverflowRaised()) return;
  // What overflowed was limited before it reached a signal.
  if (const Variable* largest = Largest()) Blame(*largest);
}

void OverflowWatch::Object(const TimeDriven& object) {
  if (!found_.empty() || FindSlope() || !OverflowRaised()) return;
  if (const auto* source = dynamic_cast<const Instrument*>(&object)) {
    found_ = NamedSource(*source);
  } else if (const Variable* largest = Largest()) {
    Blame(*largest);
  }
}

void OverflowWatch::States() {
  if (found_.empty()) FindSignal();
}

bool OverflowWatch::FindSignal() {
  const auto& variables = bench_.Variables();
  const auto found = std::find_if_not(variables.begin(), variables.end(), Finite);
  if (found == variables.end()) return false;
  Blame(**found);
  return true;
}

bool OverflowWatch::FindSlope() {
  const auto states = bench_.Solver()->States();
  const auto found = std::find_if_not(states.begin(), states.end(), [](const StateVariable* s) {
    return std::isfinite(s->Derivative);
  });
  if (found == states.end()) return false;
  Blame(**found, "slope of ");
  return true;
}

const Variable* OverflowWatch::Largest() const {
  const Variable* largest = nullptr;
  for (const Variable* variable : bench_.Variables()) {
    if (variable->Internal()) continue;
    if (!largest || std::abs(variable->Value) > std::abs(largest->Value)) largest = variable;
  }
  return largest;
}

void OverflowWatch::Blame(const Variable& variable, const char* prefix) {
  const auto& variables = bench_.Variables();
  const auto index = std::find(variables.begin(), variables.end(), &variable) - variables.begin();
  found_ = WithValue(Named(variable, prefix), before_[static_cast<std::size_t>(index)],
                     " a step before");
}

std::string FindOverflowAfterwards(const ZelBenchTop& bench, double t) {
  for (const TimeDriven* object : bench.TimeDrivenObjects()) {
    const auto* source = dynamic_cast<const Instrument*>(object);
    if (source && source->OverflowsAt(t)) return NamedSource(*source);
  }
  const auto& variables = bench.Variables();
  const auto found = std::find_if_not(variables.begin(), variables.end(), Finite);
  if (found != variables.end()) return Named(**found);
  const auto states = bench.Solver()->States();
  const auto largest = std::max_element(states.begin(), states.end(), [](auto* a, auto* b) {
    return std::abs(a->Value) < std::abs(b->Value);
  });
  return largest == states.end() ? "the equations" : WithValue(Named(**largest), (*largest)->Value);
}

}  // namespace torvane
