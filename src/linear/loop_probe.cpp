#include "linear/loop_probe.h"

#include <algorithm>
#include <cstring>

#include "core/instrument.h"
#include "core/overflow.h"
#include "core/text.h"
#include "linear/linear_fault.h"

namespace torvane {

namespace {

// What is computed for each frequency grows with its third power: to minutes beyond.
constexpr Eigen::Index MostNumbers = 150;

LoopProbe::Mark Copied(const Carried& carried, double time) {
  LoopProbe::Mark mark(sizeof time);
  std::memcpy(mark.data(), &time, sizeof time);
  for (const auto& kept : carried.Kept()) mark.insert(mark.end(), kept.begin(), kept.end());
  return mark;
}

double PutBack(const Carried& carried, const LoopProbe::Mark& mark) {
  auto from = mark.begin() + sizeof(double);
  for (const auto& kept : carried.Kept()) {
    const auto end = from + static_cast<std::ptrdiff_t>(kept.size());
    std::copy(from, end, kept.begin());
    from = end;
  }
  double time = 0.0;
  std::memcpy(&time, mark.data(), sizeof time);
  return time;
}

Carrier* AsCarrier(TimeDriven* object) {
  return dynamic_cast<Carrier*>(object);
}

// States first.
void CarryModel(ZelModel& model, Carried& carried) {
  for (StateVariable* const state : model.Solver().States()) {
    carried.Number(state->Value);
    carried.Keep(state->Numbers);
  }
  for (Variable* const variable : model.Bench().Variables()) {
    if (!variable->IsState()) carried.Number(variable->Value);
  }
  for (TimeDriven* const object : model.Bench().TimeDrivenObjects()) {
    if (Carrier* const carrier = AsCarrier(object)) carrier->Carry(carried);
  }
  dynamic_cast<Carrier&>(model).Carry(carried);
}

double ScaleOf(const Variable& variable) {
  const double scale = variable.DefaultScale() / variable.Multiplier();
  return variable.Internal() || scale == 0.0 ? 1.0 : std::abs(scale);
}

}  // namespace

/// Excites the model's command the way that a meter does.
class LoopProbe::Injection final : public Instrument {
 public:
  explicit Injection(ZelBenchTop& bench)
      : Instrument(InstrumentKind::Meter, "Linear model"), bench_(bench) {
    bench_.AddInstrument(*this);
  }
  ~Injection() override { bench_.RemoveInstrument(*this); }

  double Excitation(double /*now*/) const override { return Value; }

  double Value = 0.0;

 private:
  ZelBenchTop& bench_;
};

LoopProbe::LoopProbe(ZelModel& model)
    : model_(model), stateCount_(static_cast<Eigen::Index>(model.Solver().States().size())) {
  if (!dynamic_cast<Carrier*>(&model_)) {
    throw LinearFault(
        "the model does not say what it carries from step to step: it has no linear "
        "model");
  }
  model_.KeepOwnMemory();
  model_.Reset();  // and constants are handed on to blocks and clocks
  injection_ = std::make_unique<Injection>(model_.Bench());
  CarryModel(model_, carried_);
  numbers_ = carried_.Numbers();
  if (Count() > MostNumbers) {
    throw LinearFault("the loop carries " + std::to_string(Count()) +
                      " numbers from step to step, a dead time one for each step; at most " +
                      std::to_string(MostNumbers) + " can be followed");
  }
  scales_.assign(numbers_.size(), 1.0);
  const auto scale = [&](const Variable& variable) {
    const auto found = std::find(numbers_.begin(), numbers_.end(), &variable.Value);
    if (found != numbers_.end()) {
      scales_[static_cast<std::size_t>(found - numbers_.begin())] = ScaleOf(variable);
    }
  };
  for (const Variable* variable : model_.Bench().Variables()) scale(*variable);
}

LoopProbe::~LoopProbe() = default;

LoopProbe::Mark LoopProbe::Here() const {
  return Copied(carried_, model_.Time());
}

void LoopProbe::GoBack(const Mark& mark) {
  const double time = PutBack(carried_, mark);
  model_.Bench().SetTime(time);
  model_.Bench().TimeVar()->Value = time;
}

Eigen::VectorXd LoopProbe::Numbers() const {
  Eigen::VectorXd values(Count());
  std::transform(numbers_.begin(), numbers_.end(), values.begin(),
                 [](const double* number) { return *number; });
  return values;
}

void LoopProbe::Move(Eigen::Index number, double by) {
  *numbers_[static_cast<std::size_t>(number)] += by;
  FollowStates();
}

void LoopProbe::SetNumbers(const Eigen::VectorXd& values) {
  for (Eigen::Index i = 0; i < Count(); ++i) *numbers_[static_cast<std::size_t>(i)] = values[i];
  FollowStates();
}

void LoopProbe::FollowStates() {
  for (TimeDriven* const object : model_.Bench().TimeDrivenObjects()) {
    if (Carrier* const carrier = AsCarrier(object)) carrier->FollowStates();
  }
}

void LoopProbe::Excite(double value) {
  injection_->Value = value;
}

void LoopProbe::Go(int steps) {
  try {
    for (int i = 0; i < steps; ++i) model_.Solver().RunUntil(model_.Time() + 0.5 * Step());
  } catch (const SolverOverflow& overflow) {
    throw LinearFault(std::string("the loop overflows from its operating point on: ") +
                      overflow.what());
  }
}

// As many times as the longest chain of blocks that let their input through is long, at most.
void LoopProbe::Evaluate() {
  const std::size_t blocks = model_.Bench().TimeDrivenObjects().size();
  for (std::size_t i = 0; i <= blocks; ++i) model_.Evaluate(model_.Time());
}

Eigen::VectorXd LoopProbe::Slopes() const {
  const auto states = model_.Solver().States();
  Eigen::VectorXd slopes(stateCount_);
  std::transform(states.begin(), states.end(), slopes.begin(),
                 [](const StateVariable* state) { return state->Derivative; });
  return slopes;
}

Eigen::VectorXd LoopProbe::Signals() const {
  const auto& variables = model_.Bench().Variables();
  Eigen::VectorXd values(static_cast<Eigen::Index>(variables.size()));
  std::transform(variables.begin(), variables.end(), values.begin(),
                 [](const Variable* variable) { return variable->DisplayValue(); });
  return values;
}

}  // namespace torvane
