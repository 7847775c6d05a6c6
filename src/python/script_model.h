#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/model.h"
#include "study/setting.h"
#include "workbench/model/model_options.h"

namespace torvane::python {

/// What a run recorded, a column a signal, in display units.
struct RunRows {
  std::vector<std::string> Names;  ///< "Time" first
  std::vector<std::string> Units;
  std::vector<std::vector<double>> Columns;
};

/// What a model becomes on its way to another process or to a file.
struct FrozenModel {
  std::string Text;                 ///< its model file
  std::optional<std::string> Loop;  ///< of a loop of the user's own
  std::string LoopPath;
};

/// A model as a script has it: how it is opened and set, and one that runs. Measurements are of
/// models of their own that are opened and set alike, so that none depends on what was done before.
///
/// One thread at a time may use it; another one that tries is refused.
class ScriptModel {
 public:
  /// Opens the model that the options name.
  ScriptModel(ModelOptions options, Supervisor& supervisor);
  static std::unique_ptr<ScriptModel> Thawed(const FrozenModel& frozen, Supervisor& supervisor);

  /// Uses the model as long as it lives; in another thread, or in a callback of a run, it throws
  /// std::runtime_error.
  class Use {
   public:
    explicit Use(ScriptModel& model);
    ~Use() { model_.busy_ = 0; }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    ScriptModel& model_;
  };

  // Each of the following is for whoever has a Use.

  ZelModel& Live() { return *live_; }
  const ModelOptions& Options() const { return options_; }
  /// A model of its own for a measurement, as a program has it that ran nothing else.
  std::unique_ptr<ZelModel> Make(Supervisor& supervisor) const;

  /// Sets a constant, or "GENERATOR:KEY" of a generator. A value that would be limited is refused,
  /// as wrong usage; the old one stays.
  void SetConstant(const std::string& name, const std::string& text);
  void SetGenerator(const std::string& name, const std::string& text);
  /// Has a generator play a table of times, seconds, and values.
  void Play(const std::string& generator, std::vector<WaveTable::Point> points,
            const std::string& name);

  /// Runs the live model, from time 0 unless it is to go on, to the simulated time `until`,
  /// seconds; with rows every so many seconds if there are to be any.
  RunRows Run(double until, std::optional<double> every, const std::string& record, bool goOn,
              Supervisor& supervisor);

  /// Puts the live model back to time 0.
  void Restart(Supervisor& supervisor);

  FrozenModel Frozen() const;

 private:
  void Set(ModelSetting setting, const std::string& text);
  void Remember(std::vector<std::string>& all, const std::string& assignment);

  ModelOptions options_;
  std::unique_ptr<ZelModel> live_;
  bool ran_ = false;
  std::atomic<int> busy_ = 0;  ///< the process that uses it
};

}  // namespace torvane::python
