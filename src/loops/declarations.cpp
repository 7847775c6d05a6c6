#include <algorithm>
#include <cmath>
#include <set>

#include "loops/checker.h"
#include "loops/parser.h"
#include "loops/source_settings.h"

namespace torvane::loops {

namespace {

using Kind = Expression::Kind;
constexpr double Widest = 1e9;  ///< a parameter's limits where the text gives none

// The names that equations give a slope.
void FindIntegrated(const std::vector<Equation>& equations, std::map<std::string, Place>& found) {
  for (const Equation& equation : equations) {
    for (const Branch& branch : equation.Branches) FindIntegrated(branch.Equations, found);
    if (equation.What != Equation::Kind::Equal) continue;
    const Expression& left = equation.Sides.front();
    if (left.What == Kind::Call && left.Text == "der" && left.Parts.size() == 1 &&
        left.Parts.front().IsName()) {
      found.emplace(left.Parts.front().Text, left.Where);
    }
  }
}

// How many items a list parameter has, as far as the text tells.
void TakeSizes(const BlockType& type, const Component& component, Placing& placing) {
  const std::size_t count = type.Parameters.size();
  placing.Parameters.resize(count);
  placing.RowLengths.assign(count, 0);
  placing.Given.assign(count, false);
  for (std::size_t i = 0; i < count; ++i) {
    const BlockParameter& parameter = type.Parameters[i];
    const Modifier* const given = Find(component.Modifiers, std::string(parameter.Name));
    placing.Given[i] = given && given->Value;
    std::size_t items = 1;
    if (parameter.What == BlockParameter::Kind::List ||
        parameter.What == BlockParameter::Kind::Rows) {
      items = placing.Given[i] ? given->Value->Parts.size() : 0;
    }
    if (parameter.What == BlockParameter::Kind::Rows && items > 0) {
      placing.RowLengths[i] = static_cast<int>(given->Value->Parts.front().Parts.size());
      items = 0;
      for (const Expression& row : given->Value->Parts) items += row.Parts.size();
    }
    placing.Parameters[i].assign(items, 0);
  }
}

}  // namespace

Checker::Checker(const ModelText& text, ProblemList& problems) : text_(text), problems_(problems) {
  plan_->Name = text.Name;
  plan_->Description = text.Description;
}

void Checker::DeclareAll() {
  for (const Enumeration& type : text_.Enumerations) {
    const std::size_t index = static_cast<std::size_t>(&type - text_.Enumerations.data());
    if (!symbols_.emplace(type.Name, Symbol{Symbol::Kind::Enumeration, index}).second) {
      problems_.Error(type.Where, Quoted(type.Name) + " is declared twice");
    }
    if (type.Literals.size() > MaxChoices) {
      problems_.Error(type.Where,
                      "there can be " + std::to_string(MaxChoices) + " choices at most");
    }
    std::set<std::string> literals(type.Literals.begin(), type.Literals.end());
    if (literals.size() != type.Literals.size()) {
      problems_.Error(type.Where, "a choice of \"" + type.Name + "\" stands there twice");
    }
  }
  std::map<std::string, Place> integrated;
  CountStates(integrated);
  for (const Component& component : text_.Components) Declare(component, integrated);
}

// States and their slopes come first among the registers, so they are counted first.
void Checker::CountStates(std::map<std::string, Place>& integrated) {
  FindIntegrated(text_.Equations, integrated);
  std::size_t states = 0;
  for (const Component& component : text_.Components) {
    if (component.Type == "Real" && integrated.contains(component.Name)) ++states;
  }
  std::size_t placed = states;
  std::size_t remembered = 0;  // of sampled blocks, which the solver does not integrate
  for (const Component& component : text_.Components) {
    const BlockType* const type = FindBlockType(component.Type);
    if (!type) continue;
    LoopPlan::Block planned;
    planned.Name = component.Name;
    planned.Where = component.Where;
    planned.Type = type;
    TakeSizes(*type, component, planned.Numbers);
    const char* const wrong = type->WrongSizes ? type->WrongSizes(planned.Numbers) : nullptr;
    if (type->States && !wrong && type->When == BlockType::Timing::Sampled) {
      remembered += static_cast<std::size_t>(type->States(planned.Numbers));
    } else if (type->States && !wrong) {
      planned.Numbers.FirstState = static_cast<int>(placed);
      planned.Numbers.States = type->States(planned.Numbers);
      placed += static_cast<std::size_t>(planned.Numbers.States);
    }
    blocks_.push_back({&component, type, plan_->Blocks.size()});
    plan_->Blocks.push_back(std::move(planned));
  }
  if (placed + remembered > MaxStates) {
    problems_.Error(text_.Where, "the loop has " + std::to_string(placed + remembered) +
                                     " states; at most " + std::to_string(MaxStates) +
                                     " can be followed");
  }
  plan_->States.resize(placed);
  plan_->Time = 2 * static_cast<int>(placed);
  plan_->Registers = plan_->Time + 1;
  for (const LoopPlan::Block& block : plan_->Blocks) {
    const auto first = static_cast<std::size_t>(block.Numbers.FirstState);
    for (std::size_t i = 0; i < static_cast<std::size_t>(block.Numbers.States); ++i) {
      plan_->States[first + i].Name = block.Name + " #" + std::to_string(i + 1);
    }
  }
}

void Checker::Declare(const Component& component, const std::map<std::string, Place>& integrated) {
  CheckAnnotation(component.Annotation,
                  {"Placement", "Dialog", "choices", "Evaluate", "HideResult", "Documentation"},
                  "__Torvane of \"" + component.Name + "\"", WordsFor(component));
  if (component.Type == CommandName || component.Type == GeneratorName) {
    DeclareSource(component, component.Type == CommandName);
  } else if (const BlockType* const type = FindBlockType(component.Type)) {
    DeclareBlock(component, *type);
  } else if (component.How == Component::Prefix::Parameter ||
             component.How == Component::Prefix::Constant) {
    DeclareParameter(component);
  } else if (component.Type == "Real") {
    const auto found = integrated.find(component.Name);
    const bool isState = found != integrated.end();
    int state = -1;
    if (isState) {
      // In the order of their declarations.
      state = static_cast<int>(std::count_if(signals_.begin(), signals_.end(),
                                             [](const SignalDraft& s) { return s.State >= 0; }));
    }
    DeclareSignal(component, state);
  } else if (component.Type == "Boolean" || component.Type == "Integer" ||
             component.Type == "String" || symbols_.contains(component.Type)) {
    problems_.Error(component.TypeWhere, "signals are Real; only a parameter can be \"" +
                                             component.Type +
                                             "\", and a condition can stand in the if itself");
  } else {
    problems_.Unknown(component.TypeWhere, "type", component.Type, [] {
      std::vector<std::string> names{"Real", std::string(CommandName), std::string(GeneratorName)};
      for (const BlockType& known : BlockTypes()) names.emplace_back(known.Name);
      return names;
    });
    // What is meant by it is known no more than its type.
    symbols_.emplace(component.Name, Symbol{Symbol::Kind::Wrong, 0});
  }
}

bool Checker::TakeName(const Component& component, Symbol symbol) {
  if (component.Name == "time" || IsKeyword(component.Name) || FindFunction(component.Name)) {
    problems_.Error(component.Where,
                    Quoted(component.Name) + " is a word of the language and no name");
    return false;
  }
  if (symbols_.emplace(component.Name, symbol).second) return true;
  problems_.Error(component.Where, Quoted(component.Name) + " is declared twice");
  return false;
}

// What __Torvane can say of a component.
Checker::Words Checker::WordsFor(const Component& component) {
  const bool source = component.Type == CommandName || component.Type == GeneratorName;
  if (source || component.How == Component::Prefix::Parameter) return {"name"};
  return component.Type == "Real" ? Words{"name", "scale", "offset", "show"} : Words{};
}

// The factor to what is shown, with the unit that is shown then.
double Checker::ShowInUnit(const Component& component, std::string& unit) {
  unit = TextOf(component.Modifiers, "unit");
  const std::string shownUnit = TextOf(component.Modifiers, "displayUnit");
  if (shownUnit.empty()) return 1.0;
  const std::optional<double> factor = DisplayFactor(unit, shownUnit);
  if (!factor) {
    problems_.Warn(component.Where, "no factor leads from \"" + unit + "\" to \"" + shownUnit +
                                        "\"; " + Quoted(component.Name) + " is shown as it is");
    return 1.0;
  }
  unit = shownUnit;
  return *factor;
}

void Checker::DeclareParameter(const Component& component) {
  Parameter parameter{&component, NewRegister(), Term::Type::Unknown, -1, UnitOf(component)};
  const auto type = symbols_.find(component.Type);
  if (component.Type == "Real" || component.Type == "Integer") {
    parameter.What = Term::Type::Number;
  } else if (component.Type == "Boolean") {
    parameter.What = Term::Type::Truth;
  } else if (type != symbols_.end() && type->second.What == Symbol::Kind::Enumeration) {
    parameter.What = Term::Type::Choice;
    parameter.Enumeration = static_cast<int>(type->second.Index);
  } else {
    problems_.Unknown(component.TypeWhere, "type of a parameter", component.Type, [this] {
      std::vector<std::string> names{"Real", "Integer", "Boolean"};
      for (const Enumeration& known : text_.Enumerations) names.push_back(known.Name);
      return names;
    });
  }
  if (!TakeName(component, {Symbol::Kind::Parameter, parameters_.size()})) return;
  RefuseModifiersBut(component.Modifiers, {"unit", "displayUnit", "min", "max", "quantity"},
                     "a parameter");
  if (!component.Value) {
    problems_.Error(component.Where,
                    "the parameter \"" + component.Name + "\" needs a value: = ...");
  }
  parameters_.push_back(parameter);
}

void Checker::DeclareSignal(const Component& component, int state) {
  SignalDraft signal{&component, state >= 0 ? state : NewRegister(), state, -1, UnitOf(component)};
  if (!TakeName(component, {Symbol::Kind::Signal, signals_.size()})) return;
  RefuseModifiersBut(component.Modifiers,
                     {"unit", "displayUnit", "start", "fixed", "min", "max", "nominal", "quantity"},
                     "a signal");
  DoubtLimits(component, "a signal has none; Torvane.Nonlinear.Limiter limits");
  signals_.push_back(signal);

  LoopPlan::Signal planned;
  planned.Name = ShownName(component);
  planned.Description = component.Description;
  planned.Register = signal.Register;
  planned.State = state;
  planned.Offered = !component.Protected;
  planned.Display.Multiplier = ShowInUnit(component, planned.Unit);
  if (const Modifier* const vendor = Find(component.Annotation, "__Torvane")) {
    planned.Display.Scale = LiteralOf(vendor->Inside, "scale").value_or(1.0);
    planned.Display.Offset = LiteralOf(vendor->Inside, "offset").value_or(0.0);
    planned.Display.Shown = TruthOf(vendor->Inside, "show");
    if (planned.Display.Scale == 0.0) problems_.Error(vendor->Where, "scale must not be 0");
  }
  if (state >= 0) plan_->States[static_cast<std::size_t>(state)].Name = planned.Name;
  plan_->Signals.push_back(std::move(planned));
}

void Checker::DeclareBlock(const Component& component, const BlockType& type) {
  const auto own = std::find_if(blocks_.begin(), blocks_.end(),
                                [&](const BlockDraft& b) { return b.Text == &component; });
  const auto index = static_cast<std::size_t>(own - blocks_.begin());
  if (!TakeName(component, {Symbol::Kind::Block, index})) return;
  LoopPlan::Block& planned = plan_->Blocks[own->Planned];
  if (component.How != Component::Prefix::None) {
    problems_.Error(component.TypeWhere, "a block has no \"parameter\" or \"discrete\" before it");
  }
  if (component.Value) problems_.Error(component.Value->Where, "a block has no value");
  for (std::size_t i = 0; i < type.Outputs.size(); ++i) {
    planned.Numbers.Outputs.push_back(NewRegister());
  }
}

void Checker::DeclareSource(const Component& component, bool excited) {
  const bool another = excited && std::any_of(plan_->Sources.begin(), plan_->Sources.end(),
                                              [](const auto& source) { return source.Excited; });
  if (another) {
    problems_.Error(component.TypeWhere, "there can be one command; use " +
                                             std::string(GeneratorName) + " for other sources");
  }
  if (plan_->Sources.size() == MaxSources) {
    problems_.Error(component.TypeWhere,
                    "there can be " + std::to_string(MaxSources) + " sources at most");
  }
  if (!TakeName(component, {Symbol::Kind::Source, plan_->Sources.size()})) return;
  LoopPlan::Source source;
  source.Name = ShownName(component);
  source.Register = NewRegister();
  source.Excited = excited;
  Words known{"waveform"};
  for (const SourceSetting& setting : SourceSettings()) {
    known.push_back(setting.Name);
    const auto value = LiteralOf(component.Modifiers, std::string(setting.Name));
    if (value) source.Settings.*setting.Value = *value;
  }
  RefuseModifiersBut(component.Modifiers, known, "a source");
  if (const Modifier* const waveform = Find(component.Modifiers, "waveform")) {
    const int index =
        waveform->Value && waveform->Value->IsName() ? WaveformNamed(waveform->Value->Text) : -1;
    if (index < 0) {
      problems_.Unknown(waveform->Where, "waveform",
                        waveform->Value ? waveform->Value->Text : std::string(), WaveformNames);
    }
    source.Settings.Index = std::max(index, 0);
  }
  if (source.Settings.FreqHz < 0.0 || source.Settings.DutyCycle < 0.0 ||
      source.Settings.DutyCycle > 100.0) {
    problems_.Error(component.Where,
                    "frequency must not be below 0, and dutyCycle is between 0 and 100");
  }
  plan_->Sources.push_back(std::move(source));
}

void Checker::ValueParameters() {
  for (const Parameter& parameter : parameters_) {
    if (parameter.Text->Value) ValueParameter(parameter);
  }
}

void Checker::ValueParameter(const Parameter& parameter) {
  const Component& text = *parameter.Text;
  Context context;
  context.ConstantOnly = true;
  Term value = Resolve(*text.Value, context);
  if (value.What == Term::Type::Unknown || parameter.What == Term::Type::Unknown) return;
  if (value.What != parameter.What ||
      (value.What == Term::Type::Choice && value.Enumeration != parameter.Enumeration)) {
    problems_.Error(text.Value->Where,
                    "the value of \"" + text.Name + "\" is not of its type " + text.Type);
    return;
  }
  CompareUnits(parameter.Dimension, value.Dimension, text.Value->Where,
               "the value of \"" + text.Name + "\"");
  const std::optional<double> literal = Literal(value);
  if (!literal || text.Final || text.Protected || text.How == Component::Prefix::Constant) {
    Node node;
    node.Name = text.Name;
    node.Where = text.Where;
    node.Target = parameter.Register;
    AddNeeds(value, node.Needs);
    node.Gives = {parameter.Register};
    node.Value = std::move(value);
    constants_.push_back(std::move(node));
    DoubtLimits(text, "\"" + text.Name + "\" follows from what stands here");
    return;
  }
  Adjust(parameter, *literal);
}

// What the user may change while the loop runs.
void Checker::Adjust(const Parameter& parameter, double value) {
  const Component& text = *parameter.Text;
  LoopPlan::Constant constant;
  constant.Name = ShownName(text);
  constant.Description = text.Description;
  constant.Register = parameter.Register;
  constant.Factor = ShowInUnit(text, constant.Unit);
  const std::optional<double> min = LiteralOf(text.Modifiers, "min");
  const std::optional<double> max = LiteralOf(text.Modifiers, "max");
  if (parameter.What == Term::Type::Number) {
    if (min && max && *min > *max) {
      problems_.Error(text.Where, "min is above max");
    } else if (!std::isfinite(value)) {
      problems_.Error(text.Value->Where, "the value is no number");
    } else if ((min && value < *min) || (max && value > *max)) {
      problems_.Error(text.Value->Where, "the value is not between min and max");
    }
  } else {
    DoubtLimits(text, "\"" + text.Name + "\" is a list of its choices");
  }
  constant.Min = min.value_or(std::min(-Widest, value)) * constant.Factor;
  constant.Max = max.value_or(std::max(Widest, value)) * constant.Factor;
  constant.Default = value * constant.Factor;
  if (parameter.What == Term::Type::Truth) constant.Choices = {"No", "Yes"};
  if (parameter.What == Term::Type::Choice) {
    const auto index = static_cast<std::size_t>(parameter.Enumeration);
    const bool known = index < text_.Enumerations.size() &&
                       text_.Enumerations[index].Literals.size() <= MaxChoices;
    if (known) constant.Choices = text_.Enumerations[index].Literals;
  }
  if (text.Type == "Integer") {
    const auto whole = [](double x) { return std::abs(x) <= Widest && x == std::floor(x); };
    if (!min || !max || *max - *min > MaxChoices || !whole(*min) || !whole(*max) || !whole(value)) {
      problems_.Error(text.Where,
                      "an Integer needs whole numbers up to 1e9 as value, min and max, at most "
                      "1000 apart");
      return;
    }
    constant.First = *min;
    for (auto choice = static_cast<long>(*min); choice <= static_cast<long>(*max); ++choice) {
      constant.Choices.push_back(std::to_string(choice));
    }
    constant.Default = value - *min;
  }
  if (plan_->Constants.size() == MaxConstants) {
    problems_.Error(text.Where, "a loop has at most " + std::to_string(MaxConstants) +
                                    " parameters that can be changed");
  }
  if (plan_->Constants.size() < MaxConstants) plan_->Constants.push_back(std::move(constant));
}

void Checker::SetStarts() {
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    const Modifier* const start = Find(signals_[i].Text->Modifiers, "start");
    if (!start || !start->Value) continue;
    Context context;
    context.ConstantOnly = true;
    Node node;
    node.Value = ResolveNumber(*start->Value, context);
    if (node.Value.What == Term::Type::Unknown) continue;
    CompareUnits(signals_[i].Dimension, node.Value.Dimension, start->Where, "the start value");
    node.Name = "start of " + signals_[i].Text->Name;
    node.Where = start->Where;
    node.Target = NewRegister();
    node.Gives = {node.Target};
    AddNeeds(node.Value, node.Needs);
    plan_->Signals[i].Start = node.Target;
    if (signals_[i].State >= 0) {
      plan_->States[static_cast<std::size_t>(signals_[i].State)].Start = node.Target;
    }
    constants_.push_back(std::move(node));
  }
}

}  // namespace torvane::loops
