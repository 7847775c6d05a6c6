#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/bench.h"
#include "core/solver.h"

namespace torvane {

/// Base of the built-in models: blocks wired by their variables, a bench that lists them, a solver
/// that integrates them and the instruments that the model opens on itself.
class ZelModel {
 public:
  /// Without a solver; MakeSolver is to be called before any state is registered. A base that
  /// cannot be built is a fatal error, and the exception goes on.
  explicit ZelModel(std::string name);
  /// With a solver of the given step, seconds, for at most maxOrder states.
  ZelModel(std::string name, double step, int maxOrder = 50);
  ZelModel(const ZelModel&) = delete;
  ZelModel& operator=(const ZelModel&) = delete;
  virtual ~ZelModel();

  /// The model's windows stand: every instrument gets ready for a picture of the screen, or for one
  /// of a wide screen.
  virtual void PrepareCapture() { bench_.PrepareCapture(); }
  virtual void PrepareWideCapture() { bench_.PrepareWideCapture(); }

  /// Evaluates all blocks at time t and writes every state's derivative.
  virtual void Derivatives(double t) = 0;

  /// One evaluation as the solver makes it: Derivatives, then every time-driven object in the order
  /// of its registration.
  void Evaluate(double t) {
    Derivatives(t);
    bench_.UpdateTimeDriven(t);
  }

  const std::string& Name() const { return name_; }
  /// File names of the block diagram and of the description; empty when there is none.
  const std::string& PictureFile() const { return pictureFile_; }
  const std::string& TextFile() const { return textFile_; }

  ZelBenchTop& Bench() { return bench_; }
  const ZelBenchTop& Bench() const { return bench_; }
  ZelSolver& Solver() { return *solver_; }
  double Time() const { return bench_.Time(); }

  /// Runs to the next time that an instrument asks for and services the instruments; false when one
  /// of them wants the run to stop.
  bool RunChunk();

  /// States to their initial values, variables (but the first) to 0, then one evaluation at time -1
  /// so that every output agrees with the reset states. The time stays.
  void Reset() { Reset(ResetKind::States); }

  /// As Reset, and nothing else that blocks, instruments and the model's class remember stays
  /// either: from now on the model runs as one that was built when its class had seen none.
  void ResetEverything();

  /// Drops what the class keeps in this thread from one model to the next, and through a reset. A
  /// model that was just built then runs as the first one of its program; while models run, only an
  /// overflow asks for it.
  virtual void DropClassMemory() {}

  /// From now on the model and its instruments keep to themselves what models and instruments of
  /// their kinds otherwise share in a thread, beginning with nothing: a model that was just built
  /// runs as the first one of its program, whatever else runs and whichever threads run it.
  virtual void KeepOwnMemory() { bench_.KeepOwnMemory(); }

  /// Every constant back to its default.
  void RestoreDefaults();

  /// Keeps an instrument that the user added for as long as the model lives.
  void Own(std::unique_ptr<Instrument> instrument);
  /// Destroys such an instrument.
  void Disown(const Instrument& instrument);

 protected:
  void MakeSolver(double step, int maxOrder);
  /// Takes a solver of the model's own kind; to be called before any state is registered.
  template <class Solver>
  Solver& SetSolver(std::unique_ptr<Solver> solver) {
    Solver& set = *solver;
    solver_ = std::move(solver);
    return set;
  }
  void SetFiles(std::string picture, std::string text);

 private:
  void Reset(ResetKind kind);

  std::string name_;
  std::string pictureFile_;
  std::string textFile_;
  ZelBenchTop bench_;
  std::unique_ptr<ZelSolver> solver_;
  std::vector<std::unique_ptr<Instrument>> added_;
};

}  // namespace torvane
