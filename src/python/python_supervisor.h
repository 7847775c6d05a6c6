#pragma once

#include <pybind11/pybind11.h>

#include <chrono>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "workbench/supervisor.h"

namespace torvane::python {

namespace py = pybind11;

/// Looks after work that a script asks for, which goes on without the interpreter's lock: collects
/// what is reported, lets Ctrl-C end it, and tells a callable how far it is.
class PythonSupervisor final : public Supervisor {
 public:
  /// `onProgress` is called with what is done and all that is to be done, ten times a second and at
  /// once; None for nothing.
  explicit PythonSupervisor(py::object onProgress);

  /// Runs are not to be watched: they are in processes that have no interpreter of their own.
  void LeaveRunsAlone() { leavesRunsAlone_ = true; }

  std::unique_ptr<RunWatch> WatchRun(const ZelModel& model, double until) override;
  bool Interrupted() const override { return pending_.has_value(); }
  void Report(std::string_view label, std::string_view text) override;
  void Print(std::string_view lines) override;

  /// Whether the work may go on. To be called often, and without the interpreter's lock.
  bool GoOn(double done, double all);

  // With the lock, once the work is over.

  /// Raises what ended the work, Ctrl-C or an exception of the callable, if anything did.
  void RaisePending();
  /// Makes warnings of what was reported.
  void TellReports();
  /// The reason of a fault: its own or what was reported as an error before it.
  std::string ReasonOf(const std::string& fault) const;

 private:
  py::object onProgress_;
  std::optional<py::error_already_set> pending_;
  bool leavesRunsAlone_ = false;
  std::chrono::steady_clock::time_point next_;
  std::vector<std::pair<std::string, std::string>> reports_;  ///< labels and texts
};

/// Raises the Python exception that stands for the one in flight: ValueError for what was asked
/// wrongly, OSError for a file, StoppedError for work that was ended.
[[noreturn]] void RaiseFault(PythonSupervisor& supervisor);

/// For as long as it lives, reports go to the supervisor.
class ReportsTo {
 public:
  explicit ReportsTo(MessageSink& sink) : previous_(InstallMessageSink(&sink)) {}
  ~ReportsTo() { InstallMessageSink(previous_); }
  ReportsTo(const ReportsTo&) = delete;
  ReportsTo& operator=(const ReportsTo&) = delete;

 private:
  MessageSink* previous_;
};

/// Does work(supervisor) without the interpreter's lock and gives its result.
template <class Work>
auto Do(const py::object& onProgress, Work work) {
  PythonSupervisor supervisor(onProgress);
  const auto unlocked = [&] {
    const py::gil_scoped_release released;
    const ReportsTo reports(supervisor);
    return work(supervisor);
  };
  const auto guarded = [&] {
    try {
      return unlocked();
    } catch (const std::exception&) {
      RaiseFault(supervisor);
    }
  };
  if constexpr (std::is_void_v<decltype(work(supervisor))>) {
    guarded();
    supervisor.RaisePending();
    supervisor.TellReports();
  } else {
    auto result = guarded();
    supervisor.RaisePending();
    supervisor.TellReports();
    return result;
  }
}

}  // namespace torvane::python
