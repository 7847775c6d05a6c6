#include <pybind11/stl.h>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "python/arrays.h"
#include "python/bindings.h"
#include "workbench/work_fault.h"

namespace torvane::python {
namespace {

std::unique_ptr<ScriptModel> Open(const std::string& name, bool answerOk) {
  ModelOptions options;
  options.Model = name;
  options.AnswerOk = answerOk;
  return Do(py::none(), [&](PythonSupervisor& supervisor) {
    return std::make_unique<ScriptModel>(std::move(options), supervisor);
  });
}

py::list Constants(ScriptModel& model) {
  const ScriptModel::Use use(model);
  py::list list;
  for (const Constant* constant : model.Live().Bench().Constants()) {
    list.append(py::make_tuple(constant->Name(), constant->Unit(), constant->Value(),
                               constant->Default(), constant->Lower(), constant->Upper(),
                               py::cast(constant->Choices()), constant->Description()));
  }
  return list;
}

py::list Signals(ScriptModel& model) {
  const ScriptModel::Use use(model);
  py::list list;
  for (const Variable* signal : OfferedSignals(model.Live().Bench())) {
    list.append(
        py::make_tuple(signal->Name(), signal->Unit(), signal->IsState(), signal->Description()));
  }
  return list;
}

py::list Pairs(ScriptModel& model) {
  const ScriptModel::Use use(model);
  py::list pairs;
  const auto& analysers = model.Live().Bench().Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) return pairs;
  for (const auto& setup : dynamic_cast<FrequencyAnalyser&>(*analysers.front()).Setups()) {
    pairs.append(py::make_tuple(setup.Name, setup.Input, setup.Output, setup.PhaseAdd));
  }
  return pairs;
}

// A number, a choice's text, or of a signal what instruments show now; None of any other name.
py::object Value(ScriptModel& model, const std::string& name) {
  const ScriptModel::Use use(model);
  const ZelBenchTop& bench = model.Live().Bench();
  if (const Constant* const constant = bench.FindConst(name)) {
    if (constant->IsList()) return py::str(constant->DisplayText());
    return py::float_(constant->Value());
  }
  for (const Variable* signal : OfferedSignals(bench)) {
    if (signal->Name() == name) return py::float_(signal->DisplayValue());
  }
  return py::none();
}

py::list Generators(ScriptModel& model) {
  const ScriptModel::Use use(model);
  py::list names;
  for (const Instrument* one : model.Live().Bench().Instruments(InstrumentKind::WaveGenerator)) {
    names.append(one->Name());
  }
  return names;
}

py::object GeneratorSetting(ScriptModel& model, const std::string& name) {
  const ScriptModel::Use use(model);
  const ModelSetting setting = Do(py::none(), [&](PythonSupervisor&) {
    return ModelSetting::OfGenerator(model.Live().Bench(), name);
  });
  if (setting.IsChoice()) return py::str(setting.Text());
  return py::float_(*ParseNumber(setting.Text()));
}

void Play(ScriptModel& model, const std::string& generator,
          const py::array_t<double, py::array::c_style | py::array::forcecast>& times,
          const py::array_t<double, py::array::c_style | py::array::forcecast>& values,
          const std::string& name) {
  if (times.ndim() != 1 || values.ndim() != 1 || times.size() != values.size()) {
    throw py::value_error("a generator plays two arrays of one length, times and values");
  }
  std::vector<WaveTable::Point> points;
  for (py::ssize_t i = 0; i < times.size(); ++i) points.push_back({times.at(i), values.at(i)});
  const ScriptModel::Use use(model);
  Do(py::none(), [&](PythonSupervisor&) { model.Play(generator, std::move(points), name); });
}

py::object Run(ScriptModel& model, double until, std::optional<double> every,
               const std::string& record, bool resume, const py::object& onProgress) {
  const ScriptModel::Use use(model);
  RunRows rows = Do(onProgress, [&](PythonSupervisor& supervisor) {
    return model.Run(until, every, record, resume, supervisor);
  });
  if (!every) return py::none();
  py::list columns;
  for (auto& column : rows.Columns) columns.append(ArrayOf(std::move(column)));
  return py::make_tuple(rows.Names, rows.Units, columns);
}

void Save(ScriptModel& model, const std::string& path) {
  const ScriptModel::Use use(model);
  Do(py::none(), [&](PythonSupervisor&) {
    if (!SaveModelFile(model.Live(), path)) throw FileError("");
  });
}

py::tuple Freeze(ScriptModel& model) {
  const ScriptModel::Use use(model);
  const FrozenModel frozen = model.Frozen();
  return py::make_tuple(frozen.Text, frozen.Loop, frozen.LoopPath);
}

std::unique_ptr<ScriptModel> Thaw(const std::string& text, std::optional<std::string> loop,
                                  const std::string& path) {
  return Do(py::none(), [&](PythonSupervisor& supervisor) {
    return ScriptModel::Thawed({text, std::move(loop), path}, supervisor);
  });
}

template <class Change>
auto Changing(Change change) {
  return [change](ScriptModel& model, const std::string& name, const std::string& text) {
    const ScriptModel::Use use(model);
    Do(py::none(), [&](PythonSupervisor&) { (model.*change)(name, text); });
  };
}

}  // namespace

void BindModel(py::module_& module, py::class_<ScriptModel>& model) {
  module.def("thaw", &Thaw);
  model.def(py::init(&Open), py::arg("name"), py::arg("yes") = false)
      .def_property_readonly("name",
                             [](ScriptModel& one) {
                               const ScriptModel::Use use(one);
                               return one.Live().Name();
                             })
      .def_property_readonly("time",
                             [](ScriptModel& one) {
                               const ScriptModel::Use use(one);
                               return one.Live().Time();
                             })
      .def_property_readonly("step",
                             [](ScriptModel& one) {
                               const ScriptModel::Use use(one);
                               return one.Live().Solver().Step();
                             })
      .def("constants", &Constants)
      .def("signals", &Signals)
      .def("pairs", &Pairs)
      .def("value", &Value)
      .def("set_constant", Changing(&ScriptModel::SetConstant))
      .def("generators", &Generators)
      .def("generator_setting", &GeneratorSetting)
      .def("set_generator", Changing(&ScriptModel::SetGenerator))
      .def("play", &Play)
      .def("run", &Run, py::arg("until"), py::arg("every"), py::arg("record"), py::arg("resume"),
           py::arg("on_progress"))
      .def("restart",
           [](ScriptModel& one) {
             const ScriptModel::Use use(one);
             Do(py::none(), [&](PythonSupervisor& supervisor) { one.Restart(supervisor); });
           })
      .def("save", &Save)
      .def("freeze", &Freeze);
}

}  // namespace torvane::python
