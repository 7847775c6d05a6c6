#include <algorithm>
#include <cmath>

#include "instruments/analyser/analyser.h"
#include "loops/checker.h"

// What the model's annotation says of its step and its instruments.

namespace torvane::loops {

namespace {

constexpr double ShortestStep = 1e-9;
constexpr double LongestStep = 10.0;

}  // namespace

void Checker::TakeAnnotation() {
  CheckAnnotation(text_.Annotation,
                  {"experiment", "Documentation", "Icon", "Diagram", "version", "uses"},
                  "__Torvane", {"scope", "responses", "analysers", "picture"});
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
  plan_->Instruments.Picture = TextOf(vendor->Inside, "picture");
  if (const Modifier* const scope = Find(vendor->Inside, "scope")) TakeScope(*scope);
  if (const Modifier* const responses = Find(vendor->Inside, "responses")) {
    TakeResponses(*responses);
  }
  if (const Modifier* const analysers = Find(vendor->Inside, "analysers")) {
    TakeAnalysers(*analysers);
  }
  CheckInstruments(*vendor);
}

// Analysers excite the command; without one there are none.
void Checker::CheckInstruments(const Modifier& vendor) {
  const bool excited = std::any_of(plan_->Sources.begin(), plan_->Sources.end(),
                                   [](const auto& source) { return source.Excited; });
  for (const char* const idle : {"responses", "analysers"}) {
    const Modifier* const given = Find(vendor.Inside, idle);
    if (!given || excited) continue;
    problems_.Warn(given->Where, std::string("the ") + idle + " do nothing without a " +
                                     std::string(CommandName) + " to excite");
  }
  constexpr std::size_t Most = FrequencyAnalyser::MaxSetups;
  if (plan_->Instruments.Pairs.size() > Most) {
    problems_.Error(Find(vendor.Inside, "responses")->Where,
                    "there can be " + std::to_string(Most) + " responses at most");
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
  const auto found = name->Value->IsName() ? symbols_.find(name->Value->Text) : symbols_.end();
  if (found != symbols_.end() && found->second.What == Symbol::Kind::Signal) {
    const LoopPlan::Signal& signal = plan_->Signals[found->second.Index];
    if (signal.Offered) return signal.Name;
  }
  problems_.Unknown(name->Value->Where, "signal", name->Value->Text, [this] {
    std::vector<std::string> offered;
    for (std::size_t i = 0; i < signals_.size(); ++i) {
      if (plan_->Signals[i].Offered) offered.push_back(signals_[i].Text->Name);
    }
    return offered;
  });
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
    if (loop == "open" && !instruments.Loop.Input.empty() && !instruments.Loop.FromClosed) {
      problems_.Warn(response.Where, "another response is the open loop already");
    }
    // The open loop measured as it is tells more than the one computed from the closed.
    const bool margins = loop == "open" || (loop == "closed" && instruments.Loop.Input.empty());
    for (const char* const which : {"meanwhile", "linear"}) {
      const Modifier* const idle = margins ? nullptr : Find(response.Inside, which);
      if (!idle) continue;
      problems_.Warn(idle->Where, Quoted(which) + " does nothing here: no margins come of \"" +
                                      response.Name + "\"");
    }
    if (margins) {
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
      problems_.Unknown(condition.Where, "adjustable parameter", condition.Name, [this] {
        std::vector<std::string> names;
        for (const Parameter& parameter : parameters_) names.push_back(parameter.Text->Name);
        return names;
      });
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
    const double shown = *value * constant->Factor - constant->First;
    const bool inList = shown >= 0.0 && shown < static_cast<double>(constant->Choices.size());
    if (constant->Choices.empty() ? !(shown >= constant->Min && shown <= constant->Max) : !inList) {
      problems_.Error(condition.Value->Where,
                      "this is not between the limits of " + Quoted(condition.Name));
    }
    taken.emplace_back(constant->Name, shown);
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
  if (instruments.SettleTime && *instruments.SettleTime < 0.0) {
    problems_.Error(analysers.Where, "settleTime must not be below 0");
  }
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
