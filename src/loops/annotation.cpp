#include <algorithm>
#include <cmath>

#include "core/names.h"
#include "loops/checker.h"

// What the model's annotation says of its step and its instruments.

namespace torvane::loops {

namespace {

constexpr double ShortestStep = 1e-9;
constexpr double LongestStep = 10.0;

}  // namespace

void Checker::TakeAnnotation() {
  if (const Modifier* const experiment = Find(text_.Annotation, "experiment")) {
    const std::optional<double> step = LiteralOf(experiment->Inside, "Interval");
    if (step && !(*step >= ShortestStep && *step <= LongestStep)) {
      problems_.Error(Find(experiment->Inside, "Interval")->Where,
                      "the step is not between 1e-9 and 10 s");
    } else if (step) {
      plan_->Step = *step;
    }
    RefuseModifiersBut(experiment->Inside, {"Interval", "StartTime", "StopTime", "Tolerance"},
                       "experiment");
  }
  const Modifier* const vendor = Find(text_.Annotation, "__Torvane");
  if (!vendor) return;
  RefuseModifiersBut(vendor->Inside, {"scope", "responses", "analysers", "picture"}, "__Torvane");
  plan_->Instruments.Picture = TextOf(vendor->Inside, "picture");
  if (const Modifier* const scope = Find(vendor->Inside, "scope")) TakeScope(*scope);
  if (const Modifier* const responses = Find(vendor->Inside, "responses")) {
    TakeResponses(*responses);
  }
  if (const Modifier* const analysers = Find(vendor->Inside, "analysers")) {
    TakeAnalysers(*analysers);
  }
}

void Checker::TakeScope(const Modifier& scope) {
  RefuseModifiersBut(scope.Inside, {"division"}, "scope");
  const std::optional<double> division = LiteralOf(scope.Inside, "division");
  if (division && !(*division > 0.0)) {
    problems_.Error(scope.Where, "the scope's division must be above 0 s");
  } else {
    plan_->Instruments.ScopeDivision = division;
  }
}

// The name under which instruments know a signal.
std::string Checker::SignalNamed(const Modifier* name) {
  if (!name || !name->Value) return {};
  std::vector<std::string> offered;
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    if (!plan_->Signals[i].Offered) continue;
    const std::string& own = signals_[i].Text->Name;
    if (name->Value->IsName() && name->Value->Text == own) return plan_->Signals[i].Name;
    offered.push_back(own);
  }
  problems_.Error(name->Value->Where, UnknownNameText("signal", name->Value->Text, offered));
  return {};
}

void Checker::TakeResponses(const Modifier& responses) {
  LoopPlan::SetUp& instruments = plan_->Instruments;
  for (const Modifier& response : responses.Inside) {
    RefuseModifiersBut(response.Inside, {"from", "to", "kind", "phase", "meanwhile", "linear"},
                       "a response");
    const Modifier* const input = Find(response.Inside, "from");
    const Modifier* const output = Find(response.Inside, "to");
    if (!input || !output) {
      problems_.Error(response.Where, "a response needs from = ... and to = ...");
      continue;
    }
    LoopPlan::Pair pair{response.Name, SignalNamed(input), SignalNamed(output),
                        LiteralOf(response.Inside, "phase").value_or(0.0)};
    const std::string loop = TextOf(response.Inside, "kind");
    if (!loop.empty() && loop != "open" && loop != "closed") {
      problems_.Error(response.Where, "kind is \"open\" or \"closed\"");
    }
    // The open loop measured as it is tells more than the one computed from the closed.
    if (loop == "open" || (loop == "closed" && instruments.Loop.Input.empty())) {
      instruments.Loop.Input = pair.Input;
      instruments.Loop.Output = pair.Output;
      instruments.Loop.FromClosed = loop == "closed";
      for (const char* const which : {"meanwhile", "linear"}) {
        auto& taken = *which == 'm' ? instruments.Loop.Meanwhile : instruments.Loop.Linear;
        taken.clear();
        if (const Modifier* const conditions = Find(response.Inside, which)) {
          TakeConditions(*conditions, taken);
        }
      }
    }
    instruments.Pairs.push_back(std::move(pair));
  }
}

// What constants have to be while a response is measured, in the numbers that they show.
void Checker::TakeConditions(const Modifier& conditions,
                             std::vector<std::pair<std::string, double>>& taken) {
  for (const Modifier& condition : conditions.Inside) {
    const auto symbol = symbols_.find(condition.Name);
    const LoopPlan::Constant* constant = nullptr;
    if (symbol != symbols_.end() && symbol->second.What == Symbol::Kind::Parameter) {
      const int reg = parameters_[symbol->second.Index].Register;
      for (const LoopPlan::Constant& known : plan_->Constants) {
        if (known.Register == reg) constant = &known;
      }
    }
    if (!constant) {
      std::vector<std::string> names;
      for (const Parameter& parameter : parameters_) names.push_back(parameter.Text->Name);
      problems_.Error(condition.Where,
                      UnknownNameText("adjustable parameter", condition.Name, names));
      continue;
    }
    if (!condition.Value) continue;
    Context context;
    context.ConstantOnly = true;
    const Term term = Resolve(*condition.Value, context);
    if (term.What == Term::Type::Unknown) continue;
    const std::optional<double> value = Literal(term);
    if (!value) {
      problems_.Error(condition.Value->Where, "a plain value is needed here");
      continue;
    }
    taken.emplace_back(constant->Name, *value * constant->Factor - constant->First);
  }
}

void Checker::TakeAnalysers(const Modifier& analysers) {
  RefuseModifiersBut(analysers.Inside,
                     {"amplitude", "sweepTo", "settleTime", "order", "samplePeriod"}, "analysers");
  LoopPlan::SetUp& instruments = plan_->Instruments;
  const auto positive = [&](const char* name) {
    const std::optional<double> value = LiteralOf(analysers.Inside, name);
    if (value && !(*value > 0.0)) {
      problems_.Error(analysers.Where, std::string(name) + " must be above 0");
    }
    return value;
  };
  instruments.Amplitude = positive("amplitude");
  instruments.SweepTo = positive("sweepTo");
  instruments.SettleTime = LiteralOf(analysers.Inside, "settleTime");
  instruments.FftSamplePeriod = positive("samplePeriod");
  if (const std::optional<double> order = positive("order")) {
    constexpr double Smallest = 3.0;
    constexpr double Largest = 14.0;
    if (*order >= Smallest && *order <= Largest && *order == std::floor(*order)) {
      instruments.FftOrder = static_cast<int>(*order);
    } else {
      problems_.Error(analysers.Where, "order is a whole number from 3 to 14");
    }
  }
}

}  // namespace torvane::loops
