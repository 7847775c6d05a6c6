#include <algorithm>

#include "loops/checker.h"
#include "loops/expression_parser.h"

// How blocks come to their parameters and inputs.

namespace torvane::loops {

namespace {

using Kind = Expression::Kind;

// A default as a user would have written it at the declaration.
Expression Default(const BlockParameter& parameter, Place where) {
  ProblemList none;
  TokenReader reader(Tokens(parameter.Default, none), none);
  Expression read = ExpressionParser(reader).Read();
  read.Where = where;
  return read;
}

}  // namespace

void Checker::WireBlocks() {
  // delay() adds more behind them.
  const std::size_t count = blocks_.size();
  for (std::size_t i = 0; i < count; ++i) WireBlock(blocks_[i]);
}

void Checker::WireBlock(const BlockDraft& block) {
  Words known;
  for (const BlockInput& input : block.Type->Inputs) known.push_back(input.Name);
  for (const BlockParameter& parameter : block.Type->Parameters) known.push_back(parameter.Name);
  RefuseModifiersBut(block.Text->Modifiers, known, block.Type->Name);
  const std::size_t planned = block.Planned;
  if (block.Type->WrongSizes) {
    const char* const wrong = block.Type->WrongSizes(plan_->Blocks[planned].Numbers);
    if (wrong) problems_.Error(block.Text->Where, wrong);
  }
  LoopPlan::Block whole = plan_->Blocks[planned];
  TakeParameters(block, whole);
  TakeInputs(block, whole);
  plan_->Blocks[planned] = std::move(whole);
}

void Checker::TakeParameters(const BlockDraft& block, LoopPlan::Block& planned) {
  const std::vector<Modifier>& modifiers = block.Text->Modifiers;
  const auto& parameters = block.Type->Parameters;
  const auto given = [&](std::string_view name) { return Find(modifiers, std::string(name)); };
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const BlockParameter& parameter = parameters[i];
    const Modifier* const modifier = given(parameter.Name);
    if (modifier && !modifier->Value) {
      problems_.Error(modifier->Where, Quoted(modifier->Name) + " needs a value: = ...");
      continue;
    }
    if (!modifier && parameter.Default.empty()) {
      problems_.Error(block.Text->Where, "the block \"" + block.Text->Name + "\" needs " +
                                             std::string(parameter.Name) + " = ...");
      continue;
    }
    Expression value = modifier ? *modifier->Value : Default(parameter, block.Text->Where);
    // A default may be another parameter's value, or that with the other sign.
    Expression* const named =
        !modifier && value.What == Kind::Operator ? value.Parts.data() : &value;
    if (!modifier && named->IsName()) {
      const Modifier* const other = given(named->Text);
      if (!other || !other->Value) continue;
      *named = *other->Value;
    }
    const std::vector<int> registers =
        TakeParameter(block, parameter, value, planned.Numbers.RowLengths[i]);
    planned.Numbers.Parameters[i] = registers;
  }
  const auto period = std::find_if(parameters.begin(), parameters.end(),
                                   [](const auto& p) { return p.Name == "samplePeriod"; });
  const Modifier* const written = period == parameters.end() ? nullptr : given("samplePeriod");
  if (written && written->Value) {
    planned.Clock = ClockOf(Expression(Kind::Number, written->Where, 0.0), *written->Value,
                            written->Where, false);
  }
}

std::vector<int> Checker::TakeParameter(const BlockDraft& block, const BlockParameter& parameter,
                                        const Expression& value, int& rowLength) {
  using enum BlockParameter::Kind;
  std::vector<const Expression*> items;
  const bool list = parameter.What == List || parameter.What == Rows;
  if (list && value.What != Kind::List) {
    problems_.Error(value.Where, "\"" + std::string(parameter.Name) + "\" needs a list: {...}");
    return {};
  }
  if (parameter.What == Rows) {
    for (const Expression& row : value.Parts) {
      if (row.What != Kind::List || static_cast<int>(row.Parts.size()) != rowLength) {
        problems_.Error(row.Where, "here should be rows of the same length: {{...}, {...}}");
        return {};
      }
      for (const Expression& item : row.Parts) items.push_back(&item);
    }
  } else if (parameter.What == List) {
    for (const Expression& item : value.Parts) items.push_back(&item);
  } else {
    items.push_back(&value);
  }
  std::vector<int> registers;
  Context context;
  context.ConstantOnly = true;
  for (const Expression* const item : items) {
    Node node;
    node.Value =
        parameter.What == Truth ? ResolveTruth(*item, context) : ResolveNumber(*item, context);
    if (node.Value.What == Term::Type::Unknown) return {};
    if (!parameter.Unit.empty()) {
      CompareUnits(ParseUnit(parameter.Unit), node.Value.Dimension, item->Where,
                   std::string(parameter.Name) + " of " + block.Text->Name);
    }
    if (node.Value.IsLeaf()) {
      registers.push_back(node.Value.Register);
      continue;
    }
    node.Name = block.Text->Name + "." + std::string(parameter.Name);
    node.Where = item->Where;
    node.Target = NewRegister();
    node.Gives = {node.Target};
    AddNeeds(node.Value, node.Needs);
    registers.push_back(node.Target);
    constants_.push_back(std::move(node));
  }
  return registers;
}

// Such an output changes while blocks are updated one after the other.
bool Checker::IsLateOutput(int reg) const {
  return std::any_of(plan_->Blocks.begin(), plan_->Blocks.end(), [&](const LoopPlan::Block& block) {
    const auto& outputs = block.Numbers.Outputs;
    return block.Type->When == BlockType::Timing::Late &&
           std::find(outputs.begin(), outputs.end(), reg) != outputs.end();
  });
}

void Checker::TakeInputs(const BlockDraft& block, LoopPlan::Block& planned) {
  const bool sampled = block.Type->When == BlockType::Timing::Sampled;
  Node output;
  output.What = Node::Kind::Output;
  output.Name = block.Text->Name;
  output.Where = block.Text->Where;
  output.Block = static_cast<int>(block.Planned);
  output.Clock = sampled ? planned.Clock : -1;
  output.Gives = planned.Numbers.Outputs;
  const bool through = !block.Type->Through || block.Type->Through(planned.Numbers);

  for (const BlockInput& input : block.Type->Inputs) {
    const std::string name(input.Name);
    const Modifier* const modifier = Find(block.Text->Modifiers, name);
    if (!modifier || !modifier->Value) {
      if (input.Needed) {
        problems_.Error(block.Text->Where, "the block \"" + block.Text->Name +
                                               "\" needs its input: " + name + " = ...");
      }
      planned.Numbers.Inputs.push_back(Number(0.0));
      continue;
    }
    Node node;
    Context context;
    context.Clock = output.Clock;
    node.Value = ResolveNumber(*modifier->Value, context);
    const bool direct = node.Value.IsLeaf() && !IsLateOutput(node.Value.Register);
    node.Target = direct ? node.Value.Register : NewRegister();
    planned.Numbers.Inputs.push_back(node.Target);
    if (through) output.Needs.push_back(node.Target);
    if (node.Value.What == Term::Type::Unknown || direct) continue;
    node.Name = block.Text->Name + "." + name;
    node.Where = modifier->Where;
    node.Clock = output.Clock;
    node.Gives = {node.Target};
    AddNeeds(node.Value, node.Needs);
    nodes_.push_back(std::move(node));
  }
  if (block.Type->When != BlockType::Timing::Late) nodes_.push_back(std::move(output));
}

// delay(x, T) is a DeadTime without a name. Gives the register of its output, or -1.
int Checker::DelayBlock(const Expression& call, const Context& context) {
  if (context.ConstantOnly) {
    problems_.Error(call.Where, "only parameters can stand here; a delay changes");
    return -1;
  }
  const BlockType* const type = FindBlockType("Torvane.Continuous.DeadTime");
  LoopPlan::Block planned;
  planned.Name = "delay";
  planned.Where = call.Where;
  planned.Type = type;
  Node input;
  input.Name = "delay.u";
  input.Where = call.Where;
  input.Value = ResolveNumber(call.Parts[0], context);
  Context constant;
  constant.ConstantOnly = true;
  Node time;
  time.Name = "delay.T";
  time.Where = call.Where;
  time.Value = ResolveNumber(call.Parts[1], constant);
  if (input.Value.What == Term::Type::Unknown || time.Value.What == Term::Type::Unknown) return -1;
  CompareUnits(ParseUnit("s"), time.Value.Dimension, call.Where, "the delay");
  for (Node* const node : {&input, &time}) {
    node->Target = NewRegister();
    node->Gives = {node->Target};
    AddNeeds(node->Value, node->Needs);
  }
  Node output;
  output.What = Node::Kind::Output;
  output.Name = "delay";
  output.Where = call.Where;
  output.Block = static_cast<int>(plan_->Blocks.size());
  output.Gives = {NewRegister()};
  const int result = output.Gives.front();
  planned.Numbers.Inputs = {input.Target};
  planned.Numbers.Outputs = output.Gives;
  planned.Numbers.Parameters = {{time.Target}, {Number(0.0)}};
  planned.Numbers.RowLengths = {0, 0};
  planned.Numbers.Given = {true, false};
  plan_->Blocks.push_back(std::move(planned));
  constants_.push_back(std::move(time));
  nodes_.push_back(std::move(input));
  nodes_.push_back(std::move(output));
  return result;
}

// Equal clocks are one.
int Checker::ClockOf(const Expression& start, const Expression& period, Place where,
                     bool compareUnits) {
  Context context;
  context.ConstantOnly = true;
  const auto placed = [&](const Expression& expression) {
    Node node;
    node.Value = ResolveNumber(expression, context);
    if (node.Value.What == Term::Type::Unknown) return -1;
    if (compareUnits) {
      CompareUnits(ParseUnit("s"), node.Value.Dimension, expression.Where, "\"sample\"");
    }
    if (node.Value.IsLeaf()) return node.Value.Register;
    // The same computation as that of another clock.
    for (const Node& known : constants_) {
      if (known.Name == "sample" && known.Value == node.Value) return known.Target;
    }
    node.Name = "sample";
    node.Where = where;
    node.Target = NewRegister();
    node.Gives = {node.Target};
    AddNeeds(node.Value, node.Needs);
    const int target = node.Target;
    constants_.push_back(std::move(node));
    return target;
  };
  const int startRegister = placed(start);
  const int periodRegister = placed(period);
  if (startRegister < 0 || periodRegister < 0) return -1;
  for (std::size_t i = 0; i < plan_->Clocks.size(); ++i) {
    const LoopPlan::Clock& clock = plan_->Clocks[i];
    if (clock.Start == startRegister && clock.Period == periodRegister) return static_cast<int>(i);
  }
  if (plan_->Clocks.size() == MaxClocks) {
    problems_.Error(where, "a loop has at most " + std::to_string(MaxClocks) + " sample periods");
    return -1;
  }
  plan_->Clocks.push_back({where, startRegister, periodRegister});
  return static_cast<int>(plan_->Clocks.size()) - 1;
}

}  // namespace torvane::loops
