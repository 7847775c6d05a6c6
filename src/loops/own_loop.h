#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/constant.h"
#include "core/model.h"
#include "core/variable.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope.h"
#include "kit/analysers.h"
#include "kit/command_source.h"
#include "loops/loop_machine.h"
#include "loops/loop_plan.h"
#include "loops/loop_solver.h"

namespace torvane::loops {

/// A model that a text describes. It remembers nothing from one model to the next.
class OwnLoop final : public ZelModel {
 public:
  /// `file` and `text` are where it comes from, when that is a file.
  OwnLoop(const std::string& name, std::shared_ptr<const LoopPlan> plan,
          const std::string& file = {}, std::string text = {});

  /// The equations on the states as the bench has them, for whoever evaluates the model from
  /// outside a run.
  void Derivatives(double t) override;

  const LoopPlan& Plan() const { return *plan_; }
  /// What the file had in it when the model was made.
  const std::string& Text() const { return text_; }
  LoopSolver& OwnSolver() { return solver_; }

  // For the solver.

  /// Hands changed constants on, and asks whether instruments have a part in the command.
  void BeginRun();
  void BeginStep(double t);
  /// The sources go on to t; returns how large they are.
  long double EndStep(double t);

 private:
  void MakeSignals();
  void MakeAnalysers();
  void SetUpResponses();
  std::optional<std::size_t> SlowestClock() const;
  ModelLoop NamedLoop() const;
  void HandOnConstants();
  void TakeSources(double t);

  std::shared_ptr<const LoopPlan> plan_;
  std::string text_;
  LoopMachine machine_;
  LoopSolver& solver_;
  std::vector<std::unique_ptr<Constant>> constants_;
  std::vector<double> handedOn_;  ///< the constants' values, as the registers have them
  bool prepared_ = false;
  TimeVariable time_;
  std::vector<std::unique_ptr<Variable>> signals_;
  std::vector<StateVariable*> states_;
  std::unique_ptr<TimeDriven> driven_;
  std::unique_ptr<Analysers> analysers_;
  /// A source and where its output goes.
  struct Source {
    std::unique_ptr<ZelWave> Wave;
    double* Output;
    bool Excited;
  };
  std::vector<Source> sources_;
  std::optional<CommandSource> command_;
  std::unique_ptr<ZelScope> scope_;
};

}  // namespace torvane::loops
