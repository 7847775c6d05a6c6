#include <pybind11/stl.h>

#include <algorithm>
#include <set>

#include "core/csv_table.h"
#include "core/text.h"
#include "python/bindings.h"
#include "study/result_table.h"
#include "study/sealed_rows.h"
#include "study/shares.h"
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
  keywords.Take("shard", options.Shard);
  return options;
}

std::optional<std::size_t> BestRow(const std::string& table, const std::string& best) {
  if (best.empty()) return {};
  return ResultTable(table).BestRow(NamedMeasure(best));
}

// What decides what comes of a run, as the command line has it: shares are told apart by it.
void TakeGiven(const py::dict& given, StudyOptions& options) {
  static const std::set<std::string> elsewhere{"jobs", "shard", "best"};
  for (const auto& [key, value] : given) {
    std::string name = py::str(key);
    if (elsewhere.contains(name)) continue;
    std::replace(name.begin(), name.end(), '_', '-');
    std::string text;
    if (py::isinstance<py::bool_>(value)) {
      if (!py::cast<bool>(value)) continue;
      text = "true";
    } else if (py::isinstance<py::float_>(value)) {
      text = FormatShortest(py::cast<double>(value));
    } else if (py::isinstance<py::list>(value)) {
      for (const auto& one : value) text += (text.empty() ? "" : " ") + std::string(py::str(one));
      if (text.empty()) continue;
    } else {
      text = py::str(value);
    }
    options.Given.emplace_back("--" + name, text);
  }
}

// Of settings and measures, as the study's identity has them.
std::vector<std::string> UnitsIn(const std::string& line) {
  CsvReader reader(line);
  CsvRow row;
  reader.Next(row);
  return row.Fields;
}

// The table as text, which of its rows is the best, if that was asked for, and what a file of it
// has: of a share with what --merge tells it by.
py::tuple RunStudy(ScriptModel& model, const std::vector<std::string>& names, const Runs& runs,
                   const py::dict& given, const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  StudyOptions options = StudyOptionsOf(model, names, runs, keywords);
  TakeGiven(given, options);
  std::string table;
  std::string file;
  std::vector<std::string> units;
  Do(onProgress, [&](PythonSupervisor& supervisor) {
    Study study(options, supervisor);
    table = study.Head();
    units = UnitsIn(study.Identity().Value(UnitsPart));
    const bool share = !options.Shard.empty();
    const SealedRows seals(study.Identity(), table);
    if (share) file = seals.Begin();
    double done = 0.0;
    StudyCourse course;
    course.Take = [&](const RunResult& result) {
      const std::string row = RowLine(result.Row);
      table += row;
      if (share) file += seals.Sealed(row);
      ++done;
    };
    course.GoOn = [&] { return supervisor.GoOn(done, static_cast<double>(study.RunCount())); };
    supervisor.LeaveRunsAlone();
    study.Run(course, false);
  });
  return py::make_tuple(py::bytes(table), BestRow(table, options.Best),
                        py::bytes(options.Shard.empty() ? table : file), units);
}

// The same of the files of shares, or of a whole result.
py::tuple Merge(const std::vector<std::string>& paths, const std::string& best) {
  std::string table;
  std::optional<std::size_t> row;
  std::vector<std::string> units;
  Do(py::none(), [&](PythonSupervisor&) {
    Shares shares;
    for (const std::string& path : paths) shares.Add(path);
    table = shares.Table();
    units = shares.Units();
    row = BestRow(table, best);
  });
  return py::make_tuple(py::bytes(table), row, py::bytes(table), units);
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

void BindStudies(py::module_& module, py::class_<ScriptModel>& model) {
  module.def("merge", &Merge);
  module.def("measure_unit", &MeasureUnit);
  model.def("study", &RunStudy).def("tune", &RunTuning);
  // Values of a study have as many digits as those of a range.
  model.def_static("design_text", [](double value) { return FormatGeneral(value, 12, 2); });
}

}  // namespace torvane::python
