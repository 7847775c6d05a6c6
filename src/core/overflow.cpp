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

// What instruments offer, which users know by name; others belong to blocks.
bool IsKnown(const Variable* variable) {
  return !variable->Internal();
}

std::string Named(const Variable& variable, const char* prefix = "") {
  return std::string(prefix) + (variable.IsState() ? "state \"" : "signal \"") + variable.Name() +
         "\"";
}

std::string NamedSource(const Instrument& source) {
  return "source \"" + source.Name() + "\"";
}

// A value that the variable had or has, as instruments show it.
std::string WithValue(const std::string& what, const Variable& variable, double value,
                      const char* when = "") {
  const double shown = value * variable.Multiplier();
  if (!std::isfinite(shown)) return what;
  const std::string unit = variable.Unit().empty() ? "" : " " + variable.Unit();
  return what + " (value " + FormatEdit(shown) + unit + when + ")";
}

const Variable* FirstNotFinite(const ZelBenchTop& bench) {
  const auto& variables = bench.Variables();
  const auto found = std::find_if(variables.begin(), variables.end(), [](const Variable* variable) {
    return IsKnown(variable) && !Finite(variable);
  });
  return found == variables.end() ? nullptr : *found;
}

const Variable* Largest(const ZelBenchTop& bench) {
  const Variable* largest = nullptr;
  for (const Variable* variable : bench.Variables()) {
    if (!IsKnown(variable)) continue;
    if (!largest || std::abs(variable->Value) > std::abs(largest->Value)) largest = variable;
  }
  return largest;
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
    throw SolverOverflow(WithValue(Named(*variable), *variable, variable->Value) +
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
  if (const Variable* largest = Largest(bench_)) Blame(*largest);
}

void OverflowWatch::Object(const TimeDriven& object) {
  if (!found_.empty() || FindSlope() || !OverflowRaised()) return;
  if (const auto* source = dynamic_cast<const Instrument*>(&object)) {
    found_ = NamedSource(*source);
  } else if (const Variable* largest = Largest(bench_)) {
    Blame(*largest);
  }
}

void OverflowWatch::States() {
  if (found_.empty()) FindSignal();
}

bool OverflowWatch::FindSignal() {
  const Variable* found = FirstNotFinite(bench_);
  if (found) Blame(*found);
  return found;
}

bool OverflowWatch::FindSlope() {
  const auto states = bench_.Solver()->States();
  const auto found = std::find_if(states.begin(), states.end(), [](const StateVariable* state) {
    return IsKnown(state) && !std::isfinite(state->Derivative);
  });
  if (found == states.end()) return false;
  Blame(**found, "slope of ");
  return true;
}

void OverflowWatch::Blame(const Variable& variable, const char* prefix) {
  const auto& variables = bench_.Variables();
  const auto index = std::find(variables.begin(), variables.end(), &variable) - variables.begin();
  found_ = WithValue(Named(variable, prefix), variable, before_[static_cast<std::size_t>(index)],
                     " a step before");
}

std::string FindOverflowAfterwards(const ZelBenchTop& bench, double t) {
  for (const TimeDriven* object : bench.TimeDrivenObjects()) {
    const auto* source = dynamic_cast<const Instrument*>(object);
    if (source && source->OverflowsAt(t)) return NamedSource(*source);
  }
  if (const Variable* found = FirstNotFinite(bench)) return Named(*found);
  const Variable* largest = Largest(bench);
  return largest ? WithValue(Named(*largest), *largest, largest->Value) : "the equations";
}

}  // namespace torvane
