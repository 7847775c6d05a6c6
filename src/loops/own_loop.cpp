#include "loops/own_loop.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kit/units.h"

namespace torvane::loops {

namespace {

/// A signal that goes back to its start value.
class StartingVariable final : public Variable {
 public:
  StartingVariable(ZelBenchTop& bench, double& number, const double* start,
                   const LoopPlan::Signal& signal)
      : Variable(bench, number, signal.Name, signal.Unit, signal.Display,
                 signal.Offered ? Visibility::Offered : Visibility::Internal, signal.Description),
        start_(start) {}

  void Reset() override { Value = start_ ? *start_ : 0.0; }

 private:
  const double* start_;
};

/// Blocks and clocks, as the bench sees them.
class DrivenParts final : public TimeDriven {
 public:
  DrivenParts(ZelBenchTop& bench, LoopMachine& machine) : bench_(bench), machine_(machine) {
    bench.AddTimeDriven(*this);
  }

  void AtTime(double /*t*/) override {
    machine_.Drive();
    machine_.LeaveSlopes();
  }
  void Reset(ResetKind kind) override { machine_.Reset(kind, bench_.Time()); }

 private:
  const ZelBenchTop& bench_;
  LoopMachine& machine_;
};

int MaxOrder(const LoopPlan& plan) {
  constexpr std::size_t StatesOfASource = 2;
  return static_cast<int>(plan.States.size() + StatesOfASource * plan.Sources.size());
}

// 200 steps a division: a screen of 20 ms for a step of 10 us, as most loops have it.
DisplayDefaults TimeAxisOf(const LoopPlan& plan) {
  constexpr double StepsPerDivision = 200.0;
  DisplayDefaults axis = TimeAxis;
  axis.Scale = std::max(axis.Scale, StepsPerDivision * plan.Step);
  return axis;
}

std::unique_ptr<Constant> Made(ZelBenchTop& bench, const LoopPlan::Constant& constant) {
  if (!constant.Choices.empty()) {
    return std::make_unique<Constant>(bench, constant.Name, constant.Choices,
                                      static_cast<int>(constant.Default), constant.Description);
  }
  return std::make_unique<Constant>(bench, constant.Name, constant.Unit,
                                    Adjustable(constant.Default, constant.Min, constant.Max),
                                    constant.Description);
}

}  // namespace

OwnLoop::OwnLoop(const std::string& name, std::shared_ptr<const LoopPlan> plan,
                 const std::string& file, std::string text)
    : ZelModel(name),
      plan_(std::move(plan)),
      text_(std::move(text)),
      machine_(*plan_),
      solver_(SetSolver(
          std::make_unique<LoopSolver>(Bench(), plan_->Step, *this, machine_, MaxOrder(*plan_)))),
      time_(Bench(), "Time", "sec", TimeAxisOf(*plan_), "Simulated time") {
  for (const LoopPlan::Constant& constant : plan_->Constants) {
    constants_.push_back(Made(Bench(), constant));
  }
  handedOn_.assign(constants_.size(), std::numeric_limits<double>::quiet_NaN());
  HandOnConstants();
  for (std::size_t i = 0; i < plan_->Clocks.size(); ++i) {
    machine_.StartClock(i, machine_.Register(plan_->Clocks[i].Start));
  }
  MakeSignals();
  driven_ = std::make_unique<DrivenParts>(Bench(), machine_);
  MakeAnalysers();
  scope_ = std::make_unique<ZelScope>(Bench(), "MainScope");
  if (plan_->Instruments.ScopeDivision) {
    scope_->SetHorizontalScale(scope_->TimeChannel(), *plan_->Instruments.ScopeDivision);
  }
  SetFiles(plan_->Instruments.Picture, file);
}

void OwnLoop::MakeSignals() {
  const auto startOf = [this](int reg) { return reg < 0 ? 0.0 : machine_.Register(reg); };
  states_.assign(plan_->States.size(), nullptr);
  for (const LoopPlan::Signal& signal : plan_->Signals) {
    if (signal.State < 0) {
      const double* const start = signal.Start < 0 ? nullptr : &machine_.Register(signal.Start);
      signals_.push_back(std::make_unique<StartingVariable>(
          Bench(), machine_.Register(signal.Register), start, signal));
      signals_.back()->Reset();
      continue;
    }
    const auto state = static_cast<std::size_t>(signal.State);
    auto made = std::make_unique<StateVariable>(
        Bench(), machine_.StateOf(state), signal.Name, signal.Unit, startOf(signal.Start),
        signal.Display, signal.Offered ? Visibility::Offered : Visibility::Internal,
        signal.Description);
    states_[state] = made.get();
    signals_.push_back(std::move(made));
  }
  // What is left belongs to blocks.
  for (std::size_t i = 0; i < states_.size(); ++i) {
    if (states_[i]) continue;
    auto made = std::make_unique<StateVariable>(Bench(), machine_.StateOf(i), plan_->States[i].Name,
                                                "", 0.0, DisplayDefaults{}, Visibility::Internal);
    states_[i] = made.get();
    signals_.push_back(std::move(made));
  }
}

void OwnLoop::MakeAnalysers() {
  const LoopPlan::SetUp& wanted = plan_->Instruments;
  const auto command = std::find_if(plan_->Sources.begin(), plan_->Sources.end(),
                                    [](const auto& source) { return source.Excited; });
  if (command != plan_->Sources.end()) {
    // A sweep ends well below what the step can follow.
    constexpr double StepsPerPeriod = 20.0;
    Sweep sweep;
    sweep.To = wanted.SweepTo.value_or(std::min(sweep.To, 1.0 / (StepsPerPeriod * plan_->Step)));
    sweep.TSample = plan_->Step;
    sweep.SettleTime = wanted.SettleTime.value_or(sweep.SettleTime);
    sweep.Amplitude = wanted.Amplitude.value_or(sweep.Amplitude);
    constexpr int LargestOrder = 14;
    analysers_ = std::make_unique<Analysers>(Bench(), LargestOrder, sweep);
  }
  for (const LoopPlan::Source& source : plan_->Sources) {
    sources_.push_back({std::make_unique<ZelWave>(Bench(), source.Name, source.Settings),
                        &machine_.Register(source.Register), source.Excited});
    if (source.Excited) command_.emplace(Bench(), *sources_.back().Wave, *analysers_);
  }
  if (analysers_) SetUpResponses();
}

void OwnLoop::SetUpResponses() {
  const LoopPlan::SetUp& wanted = plan_->Instruments;
  for (const LoopPlan::Pair& pair : wanted.Pairs) {
    analysers_->AddSetup(pair.Name, pair.Input, pair.Output, pair.PhaseAdd);
  }
  constexpr int UsualOrder = 13;
  analysers_->Fft.SetOrder(wanted.FftOrder.value_or(UsualOrder));
  const double usualPeriod = analysers_->Fft.TSample();
  const double period = wanted.FftSamplePeriod.value_or(std::max(usualPeriod, plan_->Step));
  if (period != usualPeriod) analysers_->Fft.SetTSample(period);
  if (period != usualPeriod) analysers_->Fft.AutoRange();
  const std::optional<std::size_t> slowest = SlowestClock();
  analysers_->SetLoop(slowest ? &machine_.ClockAt(*slowest) : nullptr,
                      [this] { return NamedLoop(); });
}

// A loop of several sample periods repeats itself with the longest.
std::optional<std::size_t> OwnLoop::SlowestClock() const {
  std::optional<std::size_t> slowest;
  for (std::size_t i = 0; i < plan_->Clocks.size(); ++i) {
    if (!slowest || machine_.ClockAt(i).Period() > machine_.ClockAt(*slowest).Period()) slowest = i;
  }
  return slowest;
}

ModelLoop OwnLoop::NamedLoop() const {
  const LoopPlan::Feedback& loop = plan_->Instruments.Loop;
  ModelLoop named{.Input = loop.Input, .Output = loop.Output, .FromClosed = loop.FromClosed};
  if (const auto slowest = SlowestClock()) named.SampleTime = machine_.ClockAt(*slowest).Period();
  const auto take = [this](const auto& conditions, auto& settings) {
    for (const auto& [name, value] : conditions) {
      settings.push_back({Bench().FindConst(name), value});
    }
  };
  take(loop.Meanwhile, named.Meanwhile);
  take(loop.Linear, named.Linear);
  return named;
}

void OwnLoop::BeginRun() {
  HandOnConstants();
  if (command_) command_->BeginRun();
}

void OwnLoop::HandOnConstants() {
  bool changed = !prepared_;
  for (std::size_t i = 0; i < constants_.size(); ++i) {
    const double value = constants_[i]->Value();
    if (value == handedOn_[i]) continue;
    handedOn_[i] = value;
    changed = true;
    const LoopPlan::Constant& constant = plan_->Constants[i];
    machine_.Register(constant.Register) =
        constant.Choices.empty() ? value / constant.Factor : value + constant.First;
  }
  if (!changed) return;
  prepared_ = true;
  machine_.Prepare();
  for (std::size_t i = 0; i < states_.size(); ++i) {
    const int start = plan_->States[i].Start;
    if (start >= 0) states_[i]->InitialValue = machine_.Register(start);
  }
}

void OwnLoop::TakeSources(double t) {
  for (const Source& source : sources_) {
    if (source.Excited) {
      command_->BeginStep(t);
      *source.Output = command_->Value();
    } else {
      *source.Output = source.Wave->Output();
    }
  }
}

void OwnLoop::BeginStep(double t) {
  TakeSources(t);
  machine_.BeginStep(t);
}

long double OwnLoop::EndStep(double t) {
  long double size = 0.0L;
  for (const Source& source : sources_) {
    source.Wave->AtEndOfStep(t);
    size += std::abs(static_cast<long double>(source.Wave->Output()));
  }
  return size;
}

void OwnLoop::Derivatives(double t) {
  BeginRun();
  machine_.TakeStates();
  BeginStep(Bench().Time());
  machine_.EvaluateEquations(t);
  machine_.LeaveSlopes();
}

}  // namespace torvane::loops
