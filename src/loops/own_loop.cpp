#include "loops/own_loop.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "core/messages.h"
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

/// A block that works behind the equations, as the bench sees it.
class DrivenBlock final : public TimeDriven {
 public:
  DrivenBlock(ZelBenchTop& bench, LoopMachine& machine, std::size_t index)
      : machine_(machine), index_(index) {
    bench.AddTimeDriven(*this);
  }

  void AtTime(double /*t*/) override { machine_.UpdateBlock(index_); }

 private:
  LoopMachine& machine_;
  std::size_t index_;
};

/// What comes behind all blocks: the clocks, and what concerns the loop as a whole.
class DrivenClocks final : public TimeDriven, public Carrier {
 public:
  DrivenClocks(OwnLoop& loop, LoopMachine& machine) : loop_(loop), machine_(machine) {
    loop.Bench().AddTimeDriven(*this);
  }

  void AtTime(double /*t*/) override {
    machine_.UpdateClocks();
    machine_.LeaveSlopes();
  }
  void Reset(ResetKind /*kind*/) override { loop_.BeginAnew(); }
  void Carry(Carried& carried) override { machine_.Carry(carried); }
  void FollowStates() override { machine_.FollowStates(); }

 private:
  OwnLoop& loop_;
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

// The errors or the warnings among them.
std::string Joined(const std::vector<Problem>& problems, bool warnings) {
  std::string text;
  for (const Problem& problem : problems) {
    if (problem.Warning == warnings) text += (text.empty() ? "" : "; ") + problem.Text;
  }
  return text;
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
  HandOnConstants();
  MakeSignals();
  BeginAnew();
  beginning_ = false;
  MakeDriven();
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

void OwnLoop::MakeDriven() {
  for (std::size_t i = 0; i < plan_->Blocks.size(); ++i) {
    if (!plan_->Blocks[i].Type->Moves()) continue;
    driven_.push_back(std::make_unique<DrivenBlock>(Bench(), machine_, i));
  }
  driven_.push_back(std::make_unique<DrivenClocks>(*this, machine_));
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
    auto wave = std::make_unique<ZelWave>(Bench(), source.Name, source.Settings);
    if (source.Excited) command_.emplace(Bench(), *wave, *analysers_);
    sources_.push_back({std::move(wave), &machine_.Register(source.Register), source.Excited});
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
  named.RecordPeriod =
      plan_->Instruments.FftSamplePeriod.value_or(std::max(named.RecordPeriod, plan_->Step));
  named.RecordOrder = plan_->Instruments.FftOrder.value_or(named.RecordOrder);
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
  RefuseConstants();
  BeginCommand();
  if (beginning_) Evaluate(Bench().Time());
}

void OwnLoop::RefuseConstants() const {
  if (fault_.empty()) return;
  throw std::runtime_error("the loop cannot run with these constants: " + fault_);
}

void OwnLoop::BeginCommand() {
  if (command_) command_->BeginRun();
}

void OwnLoop::BeginAnew() {
  machine_.Begin(Bench().Time());
  for (const auto& signal : signals_) signal->Reset();
  beginning_ = true;
  unmoved_ = true;
}

void OwnLoop::HandOnConstants() {
  bool changed = !handedOn_;
  for (std::size_t i = 0; !changed && i < constants_.size(); ++i) {
    changed = constants_[i]->Value() != (*handedOn_)[i];
  }
  if (!changed) return;
  handedOn_.emplace();
  for (const auto& constant : constants_) handedOn_->push_back(constant->Value());
  const std::vector<Problem> found = machine_.Prepare(*handedOn_);
  fault_ = Joined(found, false);
  if (!fault_.empty()) return;
  TellDoubts(Joined(found, true));
  for (std::size_t i = 0; i < states_.size(); ++i) {
    const int start = plan_->States[i].Start;
    if (start >= 0) states_[i]->InitialValue = machine_.Register(start);
  }
  // Where a loop that has not moved yet starts from follows its constants.
  if (unmoved_) BeginAnew();
}

// What the text was told for already at its defaults, a user has seen.
void OwnLoop::TellDoubts(const std::string& doubts) {
  const bool known = !doubts_ || *doubts_ == doubts;
  doubts_ = doubts;
  if (!known && !doubts.empty()) Warning(Name() + ": " + doubts);
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
  unmoved_ = false;
  long double size = 0.0L;
  for (const Source& source : sources_) {
    source.Wave->AtEndOfStep(t);
    size += std::abs(static_cast<long double>(source.Wave->Output()));
  }
  return size;
}

void OwnLoop::Derivatives(double t) {
  HandOnConstants();
  BeginCommand();
  Evaluate(t);
}

void OwnLoop::Evaluate(double t) {
  machine_.TakeStates();
  BeginStep(Bench().Time());
  machine_.EvaluateEquations(t);
  machine_.LeaveSlopes();
  // The evaluation that ends a reset only shows how the loop begins.
  if (std::exchange(beginning_, false)) machine_.DropTraces();
}

}  // namespace torvane::loops
