#include <pybind11/stl.h>

#include "core/text.h"
#include "python/bindings.h"
#include "study/result_table.h"
#include "workbench/study/study.h"
#include "workbench/study/tuning_run.h"

namespace torvane::python {
namespace {

using Runs = std::vector<std::vector<std::string>>;

StudyOptions StudyOptionsOf(const ScriptModel& model, const std::vector<std::string>& names,
                            const Runs& runs, Keywords& keywords) {
  StudyOptions options;
  options.Measure = MeasureOptionsOf(model, keywords);
  options.Files = {options.Measure.Bode.Response.Model.Model};
  if (!names.empty()) options.Design = StudyDesign{names, runs, {}, {}};
  std::string table;
  keywords.Take("table", table);
  if (!table.empty()) options.Files.insert(options.Files.begin(), table);
  keywords.Take("vary", options.Vary);
  keywords.Take("sample", options.Sample);
  keywords.Take("seed", options.Seed);
  keywords.Take("jobs", options.Jobs);
  keywords.Take("require", options.Require);
  keywords.Take("best", options.Best);
  return options;
}

// The table as text, and which of its rows is the best, if that was asked for.
py::tuple RunStudy(ScriptModel& model, const std::vector<std::string>& names, const Runs& runs,
                   const py::dict& given, const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  const StudyOptions options = StudyOptionsOf(model, names, runs, keywords);
  std::string table;
  Do(onProgress, [&](PythonSupervisor& supervisor) {
    Study study(options, supervisor);
    table = study.Head();
    double done = 0.0;
    StudyCourse course;
    course.Take = [&](const RunResult& result) {
      table += RowLine(result.Row);
      ++done;
    };
    course.GoOn = [&] { return supervisor.GoOn(done, static_cast<double>(study.RunCount())); };
    supervisor.LeaveRunsAlone();
    study.Run(course, false);
  });
  std::optional<std::size_t> best;
  if (!options.Best.empty()) best = ResultTable(table).BestRow(NamedMeasure(options.Best));
  return py::make_tuple(py::bytes(table), best);
}

// Captions and fields of the best that was found, and what is in its way, if anything is.
py::tuple RunTuning(ScriptModel& model, const py::dict& given, const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  TuneOptions options;
  options.Measure = MeasureOptionsOf(model, keywords);
  keywords.Take("vary", options.Vary);
  keywords.Take("require", options.Require);
  keywords.Take("best", options.Best);
  keywords.Take("runs", options.MostRuns);
  std::vector<std::string> captions;
  std::vector<std::string> fields;
  Do(onProgress, [&](PythonSupervisor& supervisor) {
    TuningRun search(options, supervisor);
    supervisor.LeaveRunsAlone();
    const Tuning best = search.Run(
        [&](int runs, const Tuning&) { return supervisor.GoOn(runs, search.MostRuns()); });
    captions = search.Captions();
    fields = search.Fields(best);
    if (!supervisor.Interrupted()) search.CheckMet(best);
  });
  return py::make_tuple(captions, fields);
}

}  // namespace

void BindStudies(py::class_<ScriptModel>& model) {
  model.def("study", &RunStudy).def("tune", &RunTuning);
  // Values of a study have as many digits as those of a range.
  model.def_static("design_text", [](double value) { return FormatGeneral(value, 12, 2); });
}

}  // namespace torvane::python
