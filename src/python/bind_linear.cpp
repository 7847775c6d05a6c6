#include <pybind11/complex.h>
#include <pybind11/eigen.h>
#include <pybind11/stl.h>

#include "linear/linearize.h"
#include "linear/theory.h"
#include "python/arrays.h"
#include "python/bindings.h"

namespace torvane::python {
namespace {

struct Linear {
  LinearSystem System;
  std::vector<Root> Poles;
  std::vector<Root> Zeros;
  std::vector<std::string> Notes;
  torvane::Stability Stability;
};

std::vector<std::complex<double>> Values(const std::vector<Root>& roots) {
  std::vector<std::complex<double>> values;
  for (const Root& root : roots) values.push_back(root.Value);
  return values;
}

py::tuple Linearized(ScriptModel& model, const std::string& input, const std::string& output) {
  const ScriptModel::Use use(model);
  const Linear linear = Do(py::none(), [&](PythonSupervisor& supervisor) {
    const auto own = model.Make(supervisor);
    NamedSignal(own->Bench(), input);
    NamedSignal(own->Bench(), output);
    const LinearModel all = Linearize(*own);
    Linear found{TheoryPair(all, input, output).System(), {}, {}, all.Notes, all.Stability()};
    found.Poles = Poles(found.System);
    found.Zeros = Zeros(found.System, 0);
    Cancel(found.Poles, found.Zeros);
    return found;
  });
  return py::make_tuple(linear.System.A, linear.System.B, linear.System.C, linear.System.D,
                        linear.System.Ts, Values(linear.Poles), Values(linear.Zeros), linear.Notes,
                        linear.Stability.Text);
}

py::tuple Theory(ScriptModel& model, const std::string& input, const std::string& output,
                 std::vector<double> hz, const std::optional<double>& tSample) {
  const ScriptModel::Use use(model);
  const ResponseCurve curve = Do(py::none(), [&](PythonSupervisor& supervisor) {
    const auto own = model.Make(supervisor);
    NamedSignal(own->Bench(), input);
    NamedSignal(own->Bench(), output);
    const LinearModel all = Linearize(*own);
    const ReadSignals read = tSample ? SampledBy(all, *tSample) : ReadSignals::EveryStep;
    return TheoryPair(all, input, output).At(hz, read);
  });
  std::vector<double> gain;
  std::vector<double> phase;
  for (const ResponsePoint& point : curve) {
    gain.push_back(point.Gain);
    phase.push_back(point.Phase);
  }
  return py::make_tuple(ArrayOf(std::move(hz)), ArrayOf(std::move(gain)),
                        ArrayOf(std::move(phase)));
}

py::dict LoopMargins(ScriptModel& model) {
  const ScriptModel::Use use(model);
  const LoopTheory theory = Do(py::none(), [&](PythonSupervisor& supervisor) {
    return TheoryOfLoop(*model.Make(supervisor));
  });
  const auto reading = [](const Margins::Reading* one) {
    return one ? py::object(py::make_tuple(one->Hz, one->Value)) : py::object(py::none());
  };
  const auto& peak = theory.Read.Sensitivity;
  py::dict margins;
  margins["phase_margin"] = reading(theory.Read.SmallestPhaseMargin());
  margins["gain_margin"] = reading(theory.Read.SmallestGainMargin());
  margins["sensitivity"] = reading(peak ? &*peak : nullptr);
  margins["missing"] = theory.Read.Missing;
  margins["notes"] = theory.Notes;
  return margins;
}

}  // namespace

void BindLinear(py::class_<ScriptModel>& model) {
  model.def("linearize", &Linearized)
      .def("theory", &Theory)
      .def("poles",
           [](ScriptModel& one) {
             const ScriptModel::Use use(one);
             return Values(Do(py::none(), [&](PythonSupervisor& supervisor) {
               return Linearize(*one.Make(supervisor)).Poles();
             }));
           })
      .def("loop_margins", &LoopMargins);
}

}  // namespace torvane::python
