#include "python/python_supervisor.h"

#include "core/text.h"
#include "linear/linear_fault.h"
#include "study/study_fault.h"
#include "workbench/work_fault.h"

namespace torvane::python {
namespace {

constexpr std::chrono::milliseconds Period(100);

class Watch final : public RunWatch {
 public:
  Watch(PythonSupervisor& supervisor, double until) : supervisor_(supervisor), until_(until) {}

  void CheckIn(double time) override {
    if (supervisor_.GoOn(time, until_)) return;
    throw StoppedError("interrupted at " + FormatShortest(time) + " s");
  }

 private:
  PythonSupervisor& supervisor_;
  double until_;
};

class NoWatch final : public RunWatch {
 public:
  void CheckIn(double /*time*/) override {}
};

// The command line calls settings "--time-base", keyword arguments are called time_base.
std::string WithKeywords(const std::string& text) {
  std::string renamed;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool begins = text.compare(i, 2, "--") == 0 && (i == 0 || text[i - 1] != '-');
    if (!begins) {
      renamed += text[i];
      continue;
    }
    for (i += 2; i < text.size() && (text[i] == '-' || (text[i] >= 'a' && text[i] <= 'z')); ++i) {
      renamed += text[i] == '-' ? '_' : text[i];
    }
    --i;
  }
  return renamed;
}

[[noreturn]] void Raise(const py::object& type, const std::string& text) {
  PyErr_SetString(type.ptr(), text.c_str());
  throw py::error_already_set();
}

}  // namespace

PythonSupervisor::PythonSupervisor(py::object onProgress)
    : onProgress_(std::move(onProgress)), next_(std::chrono::steady_clock::now()) {
  if (onProgress_.is_none()) next_ += Period;
}

std::unique_ptr<RunWatch> PythonSupervisor::WatchRun(const ZelModel& /*model*/, double until) {
  if (leavesRunsAlone_) return std::make_unique<NoWatch>();
  return std::make_unique<Watch>(*this, until);
}

void PythonSupervisor::Report(std::string_view label, std::string_view text) {
  reports_.emplace_back(label, text);
}

void PythonSupervisor::Print(std::string_view lines) {
  if (!reports_.empty()) reports_.back().second.append("\n").append(lines);
}

bool PythonSupervisor::GoOn(double done, double all) {
  if (pending_) return false;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return true;
  next_ = now + Period;
  const py::gil_scoped_acquire locked;
  try {
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    if (!onProgress_.is_none()) onProgress_(done, all);
  } catch (py::error_already_set& error) {
    pending_.emplace(std::move(error));
  }
  return !pending_;
}

void PythonSupervisor::RaisePending() {
  if (!pending_) return;
  py::error_already_set error = std::move(*pending_);
  pending_.reset();
  throw error;
}

void PythonSupervisor::TellReports() {
  if (reports_.empty()) return;
  const py::object report = py::module_::import("torvane._reports").attr("report");
  for (const auto& [label, text] : reports_) report(label, WithKeywords(text));
}

std::string PythonSupervisor::ReasonOf(const std::string& fault) const {
  std::string reason = fault;
  for (const auto& [label, text] : reports_) {
    if (!fault.empty() || label == "Note" || label == "Warning") continue;
    reason += (reason.empty() ? "" : "\n") + (label == "Error" ? text : label + ": " + text);
  }
  return WithKeywords(reason);
}

void RaiseFault(PythonSupervisor& supervisor) {
  supervisor.RaisePending();
  const py::module_ builtins = py::module_::import("builtins");
  const py::object value = builtins.attr("ValueError");
  const py::object os = builtins.attr("OSError");
  const py::object stopped = py::module_::import("torvane._reports").attr("StoppedError");
  try {
    throw;
  } catch (const WorkFault& fault) {
    const bool usage = fault.What() == WorkFault::Kind::Usage;
    const bool file = fault.What() == WorkFault::Kind::File;
    Raise(usage ? value : file ? os : stopped, supervisor.ReasonOf(fault.what()));
  } catch (const StudyFault& fault) {
    const bool asked = fault.What() == StudyFault::Kind::Asked;
    const bool file = fault.What() == StudyFault::Kind::File;
    Raise(asked ? value : file ? os : stopped, supervisor.ReasonOf(fault.what()));
  } catch (const LinearFault& fault) {
    Raise(stopped, supervisor.ReasonOf(fault.what()));
  }
}

}  // namespace torvane::python
