#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/carried.h"
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

/// A model that a text describes. Its class keeps nothing from one model to the next.
class OwnLoop final : public ZelModel, public Carrier {
 public:
  /// `file` and `text` are where it comes from, when that is a file.
  OwnLoop(const std::string& name, std::shared_ptr<const LoopPlan> plan,
          const std::string& file = {}, std::string text = {});

  /// The equations on the states as the bench has them, for whoever evaluates the model from
  /// outside a run.
  void Derivatives(double t) override;

  /// What it carries on lies with its blocks and clocks, which the bench knows. Throws what
  /// BeginRun throws.
  void Carry(Carried& /*carried*/) override { RefuseConstants(); }

  /// What the file had in it when the model was made.
  const std::string& Text() const { return text_; }

  // For the solver.

  /// Hands changed constants on, and asks whether instruments have a part in the command. A loop
  /// that cannot run with the constants goes no step; what is wrong is thrown as a
  /// std::runtime_error. The run can go on when the constants have changed.
  void BeginRun();

  /// Everything begins anew at the present time.
  void BeginAnew();
  void BeginStep(double t);
  /// The sources go on to t; returns how large they are.
  long double EndStep(double t);

 private:
  void MakeSignals();
  void MakeDriven();
  void MakeAnalysers();
  void SetUpResponses();
  std::optional<std::size_t> SlowestClock() const;
  ModelLoop NamedLoop() const;
  void HandOnConstants();
  void RefuseConstants() const;
  void TellDoubts(const std::string& doubts);
  void BeginCommand();
  void TakeSources(double t);
  void Evaluate(double t);

  std::shared_ptr<const LoopPlan> plan_;
  std::string text_;
  LoopMachine machine_;
  LoopSolver& solver_;
  std::vector<std::unique_ptr<Constant>> constants_;
  std::optional<std::vector<double>> handedOn_;  ///< the constants' values, taken or refused
  std::string fault_;                            ///< why they were refused
  std::optional<std::string> doubts_;            ///< what was told of them last
  bool beginning_ = false;                       ///< the model is being reset
  bool unmoved_ = false;                         ///< no step since it began
  TimeVariable time_;
  std::vector<std::unique_ptr<Variable>> signals_;
  std::vector<StateVariable*> states_;
  std::vector<std::unique_ptr<TimeDriven>> driven_;
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
