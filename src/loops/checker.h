#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "loops/loop_plan.h"
#include "loops/node.h"
#include "loops/problems.h"
#include "loops/syntax.h"
#include "loops/term.h"

namespace torvane::loops {

/// Makes a plan of a text that has been taken apart, and reports all that is wrong with it. The
/// plan is whole only when nothing is.
class Checker {
 public:
  Checker(const ModelText& text, ProblemList& problems);

  std::shared_ptr<const LoopPlan> Check();

 private:
  struct Symbol {
    /// Wrong: what it is nobody knows, which has been reported.
    enum class Kind { Parameter, Signal, Block, Source, Enumeration, Wrong };
    Kind What = Kind::Wrong;
    std::size_t Index = 0;
  };
  struct Parameter {
    const Component* Text = nullptr;
    int Register = -1;
    Term::Type What = Term::Type::Number;
    int Enumeration = -1;
    std::optional<Unit> Dimension;
  };
  struct SignalDraft {
    const Component* Text = nullptr;
    int Register = -1;
    int State = -1;
    int Previous = -1;  ///< register of its value before this evaluation, when that is asked for
    std::optional<Unit> Dimension;
    bool Defined = false;
  };
  struct BlockDraft {
    const Component* Text = nullptr;
    const BlockType* Type = nullptr;
    std::size_t Planned = 0;  ///< its position among the plan's
  };
  /// Where an expression stands.
  struct Context {
    bool ConstantOnly = false;  ///< it may depend on parameters only
    int Clock = -1;             ///< of the when around it
  };
  /// "x = value" or "der(x) = value".
  struct Assignment {
    int Target;
    std::string Name;
    Place Where;
    Term Value;
  };

  // Declarations.
  void DeclareAll();
  void Declare(const Component& component, const std::map<std::string, Place>& integrated);
  bool TakeName(const Component& component, Symbol symbol);
  void DeclareParameter(const Component& component);
  void DeclareSignal(const Component& component, int state);
  void DeclareBlock(const Component& component, const BlockType& type);
  void DeclareSource(const Component& component, bool excited);
  void CountStates(std::map<std::string, Place>& integrated);
  using Words = std::vector<std::string_view>;
  void RefuseModifiersBut(const std::vector<Modifier>& modifiers, const Words& known,
                          std::string_view of);
  static Words WordsFor(const Component& component);
  double ShowInUnit(const Component& component, std::string& unit);
  void RefuseTwice(const std::vector<Modifier>& modifiers);
  void CheckAnnotation(const std::vector<Modifier>& annotation, Words known, std::string_view of,
                       const Words& words);
  void DoubtLimits(const Component& component, const std::string& why);
  std::optional<double> LiteralOf(const std::vector<Modifier>& modifiers, const std::string& name);
  std::string TextOf(const std::vector<Modifier>& modifiers, const std::string& name);
  bool TruthOf(const std::vector<Modifier>& modifiers, const std::string& name);
  std::string ShownName(const Component& component);
  std::optional<Unit> UnitOf(const Component& component);

  // Values of parameters and starts.
  void ValueParameters();
  void ValueParameter(const Parameter& parameter);
  void Adjust(const Parameter& parameter, double value);
  void SetStarts();
  std::optional<double> Literal(const Term& term) const;

  // Blocks.
  void WireBlocks();
  void WireBlock(const BlockDraft& block);
  void TakeParameters(const BlockDraft& block, LoopPlan::Block& planned);
  std::vector<int> TakeParameter(const BlockDraft& block, const BlockParameter& parameter,
                                 const Expression& value, int& rowLength);
  bool IsLateOutput(int reg) const;
  void TakeInputs(const BlockDraft& block, LoopPlan::Block& planned);
  int DelayBlock(const Expression& call, const Context& context);
  int ClockOf(const Expression& start, const Expression& period, Place where, bool compareUnits);

  // Expressions.
  Term Resolve(const Expression& expression, const Context& context);
  Term ResolveName(const Expression& expression, const Context& context);
  Term ResolveCall(const Expression& expression, const Context& context);
  Term ResolvePre(const Expression& expression, const Context& context);
  Term ResolveDer(const Expression& expression, const Context& context);
  Term ResolveOperator(const Expression& expression, const Context& context);
  Term ResolveIf(const Expression& expression, const Context& context);
  Term ResolveNumber(const Expression& expression, const Context& context);
  Term ResolveTruth(const Expression& expression, const Context& context);
  Term Signal(const SignalDraft& signal) const;
  bool Alike(const Term& left, const Term& right, Place where);
  void CompareUnits(const std::optional<Unit>& left, const std::optional<Unit>& right, Place where,
                    const std::string& what);
  std::vector<std::string> KnownNames() const;
  int Number(double value);

  // Equations.
  void TakeEquations();
  void TakeEquation(const Equation& equation);
  void TakeWhen(const Equation& equation);
  void TakeReinit(const Equation& reinit, const Term& condition);
  std::vector<Assignment> Collect(const std::vector<Equation>& equations, const Context& context);
  void CollectIf(const Equation& equation, const Context& context,
                 std::vector<Assignment>& assignments);
  std::optional<Assignment> Assign(const Equation& equation, const Context& context);
  SignalDraft* Target(const Expression& left, bool& slope);
  void Keep(Assignment assignment, int clock);
  void FindMissing();

  void ShowFirstSignals();
  void FindDoubleNames();

  // The model's annotation.
  void TakeAnnotation();
  void TakeScope(const Modifier& scope);
  void TakeResponses(const Modifier& responses);
  void TakeAnalysers(const Modifier& analysers);
  void TakeConditions(const Modifier& conditions,
                      std::vector<std::pair<std::string, double>>& taken);
  void CheckInstruments(const Modifier& vendor);
  std::string SignalNamed(const Modifier* name);

  int NewRegister() { return plan_->Registers++; }

  const ModelText& text_;
  ProblemList& problems_;
  std::shared_ptr<LoopPlan> plan_ = std::make_shared<LoopPlan>();
  std::map<std::string, Symbol, std::less<>> symbols_;
  std::vector<Parameter> parameters_;
  std::vector<SignalDraft> signals_;
  std::vector<BlockDraft> blocks_;
  std::map<double, int> numbers_;
  std::vector<Node> constants_;  ///< what parameters are computed from
  std::vector<Node> nodes_;
  std::map<int, Place> assigned_;              ///< by register, where its equation is
  std::vector<std::pair<int, int>> previous_;  ///< register, and where its last value is kept
};

}  // namespace torvane::loops
