#include "core/bench.h"

#include <algorithm>

#include "core/constant.h"
#include "core/instrument.h"
#include "core/messages.h"
#include "core/overflow.h"
#include "core/solver.h"

namespace torvane {

namespace {

// How far the solver may run when no instrument asks for an earlier time, seconds.
constexpr double LongestChunk = 1e6;

template <typename Named>
Named* FindByName(const std::vector<Named*>& list, const std::string& name) {
  const auto found = std::find_if(list.begin(), list.end(),
                                  [&](const Named* item) { return item->Name() == name; });
  return found == list.end() ? nullptr : *found;
}

}  // namespace

void ZelBenchTop::SetTimeVar(Variable& timeVar) {
  if (timeVar_) Error("Error: TimeVar already initialized");
  timeVar_ = &timeVar;
}

void ZelBenchTop::AddVar(Variable& variable) {
  if (!timeVar_) FatalError("Error:  TimeVar must be initialized before other vars");
  const bool isTimeName = timeVar_ && variable.Name() == timeVar_->Name();
  if (isTimeName || (!variable.Internal() && FindVar(variable.Name()))) {
    Error("Error: " + variable.Name() + " is already used");
  }
  variables_.push_back(&variable);
}

void ZelBenchTop::AddStateVar(StateVariable& state) {
  if (!solver_) {
    FatalError("Solver not initializated when statevar added");
    return;
  }
  solver_->AddStateVar(state);
}

void ZelBenchTop::AddConst(Constant& constant) {
  if (FindConst(constant.Name())) Error("Error: " + constant.Name() + " is already used");
  constants_.push_back(&constant);
}

void ZelBenchTop::AttachSolver(ZelSolver& solver) {
  if (solver_) {
    FatalError("Attempt to add solver when one already is present");
    return;
  }
  solver_ = &solver;
}

void ZelBenchTop::AddInstrument(Instrument& instrument) {
  instruments_[IndexOf(instrument.Kind())].push_back(&instrument);
  instrument.SetHistory(&history_);
}

void ZelBenchTop::RemoveInstrument(Instrument& instrument) {
  std::erase(instruments_[IndexOf(instrument.Kind())], &instrument);
  instrument.SetHistory(nullptr);
  history_.Forget(instrument);
}

Variable* ZelBenchTop::VarAt(int index) const {
  if (index < 0 || index >= static_cast<int>(variables_.size())) {
    Error("Internal Error ZelVarVector.VarAt failed");
    return nullptr;
  }
  return variables_[static_cast<std::size_t>(index)];
}

Constant* ZelBenchTop::ConstAt(int index) const {
  if (index < 0 || index >= static_cast<int>(constants_.size())) {
    Error("Internal Error: ZelConstVector.ConstAt Failed");
    return nullptr;
  }
  return constants_[static_cast<std::size_t>(index)];
}

Variable* ZelBenchTop::FindVar(const std::string& name) const {
  return FindByName(variables_, name);
}

Constant* ZelBenchTop::FindConst(const std::string& name) const {
  return FindByName(constants_, name);
}

Instrument* ZelBenchTop::FindInstrument(InstrumentKind kind, const std::string& name) const {
  return FindByName(Instruments(kind), name);
}

double ZelBenchTop::NextStopTime() const {
  double stop = time_ + LongestChunk;
  for (const InstrumentKind kind : ServicedKinds) {
    for (const Instrument* instrument : Instruments(kind)) {
      const double requested = instrument->NextTime();
      if (requested >= 0.0 && requested < stop) stop = requested;
    }
  }
  return stop;
}

bool ZelBenchTop::ServiceInstruments() {
  bool goOn = true;
  for (const InstrumentKind kind : ServicedKinds) {
    for (Instrument* instrument : Instruments(kind)) {
      if (!instrument->Service(time_)) goOn = false;
    }
  }
  if (OverflowRaised()) CheckSignals(*this);
  return goOn;
}

bool ZelBenchTop::AnyScopeBusy() const {
  const auto& scopes = Instruments(InstrumentKind::Scope);
  return std::any_of(scopes.begin(), scopes.end(), [](const Instrument* s) { return s->Busy(); });
}

bool ZelBenchTop::MetersExcite() const {
  const auto& meters = Instruments(InstrumentKind::Meter);
  return std::any_of(meters.begin(), meters.end(),
                     [](const Instrument* m) { return m->Excites(); });
}

double ZelBenchTop::MeterExcitation(double now) const {
  double sum = 0.0;
  for (const Instrument* meter : Instruments(InstrumentKind::Meter)) sum += meter->Excitation(now);
  return sum;
}

void ZelBenchTop::ResetVariables(ResetKind kind) {
  // The walk starts at the second variable on purpose: the first one keeps its value.
  for (std::size_t i = kind == ResetKind::States ? 1 : 0; i < variables_.size(); ++i)
    variables_[i]->Reset();
}

void ZelBenchTop::ResetTimeDriven(ResetKind kind) {
  for (TimeDriven* object : timeDriven_) object->Reset(kind);
}

void ZelBenchTop::RestartInstruments() {
  for (const InstrumentKind kind : ServicedKinds) {
    for (Instrument* instrument : Instruments(kind)) instrument->Restart();
  }
}

void ZelBenchTop::KeepOwnMemory() {
  for (const InstrumentKind kind : ServicedKinds) {
    for (Instrument* instrument : Instruments(kind)) instrument->KeepOwnMemory();
  }
}

void ZelBenchTop::RefreshInstruments() {
  for (const InstrumentKind kind : ServicedKinds) {
    for (Instrument* instrument : Instruments(kind)) instrument->Refresh();
  }
}

void ZelBenchTop::PrepareCapture() {
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (Instrument* instrument : Instruments(kind)) instrument->PrepareCapture();
  }
}

void ZelBenchTop::PrepareWideCapture() {
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (Instrument* instrument : Instruments(kind)) instrument->PrepareWideCapture();
  }
}

void ZelBenchTop::StartScopes() {
  for (Instrument* scope : Instruments(InstrumentKind::Scope)) scope->Start();
}

}  // namespace torvane
