#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/instrument_kind.h"
#include "core/model.h"
#include "instruments/analyser/response.h"
#include "instruments/analyser/trace_origin.h"
#include "instruments/scope/scope_memory.h"

namespace torvane {

class FrequencyAnalyser;
class ModelFileHost;
class ZelScope;

/// What the user has changed of a model since it was built: values of constants, settings and
/// windows of instruments, also those that no file keeps, meters, kept traces, and what analysers
/// hold: that goes to memories, whose names say that it is of a former text. Another model can be
/// given all of it that it has a place for; what was left alone is there as that model begins.
class ModelChanges {
 public:
  /// `fresh` is another model of the same kind, just built.
  ModelChanges(const ZelModel& model, const ZelModel& fresh);

  /// Gives the changes to the host's model; texts that tell what it has no place for, or takes
  /// otherwise.
  std::vector<std::string> GiveTo(ModelFileHost& host) const;

 private:
  struct Memory {
    InstrumentKind Kind;
    std::string Analyser;
    int Slot;  ///< 0: the current measurement
    Response Held;
    TraceOrigin Origin;
    bool Shown;
  };
  struct Traces {
    std::string Scope;
    ScopeScreen Screen;
    /// Of its values, in their order: the signals' names and units.
    std::vector<std::pair<std::string, std::string>> Signals;
  };

  /// What no file keeps of an instrument: cursors, the kind of plot.
  struct State {
    InstrumentKind Kind;
    std::string Name;
    std::string Records;
  };

  void TakeState(const Instrument& instrument, const Instrument* fresh);
  void TakeMemories(const FrequencyAnalyser& analyser);
  void TakeTraces(const ZelScope& scope);
  static void Give(const Memory& memory, FrequencyAnalyser& analyser,
                   std::vector<std::string>& notes);
  static void Give(const Traces& traces, ZelScope& scope, std::vector<std::string>& notes);

  std::vector<std::string> lines_;  ///< of a model file
  std::vector<Memory> memories_;
  std::vector<Traces> traces_;
  std::vector<State> states_;
  std::vector<std::string> signals_;  ///< of which traces have colours
};

}  // namespace torvane
