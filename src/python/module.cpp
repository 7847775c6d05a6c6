#include <pybind11/stl.h>

#include "core/version.h"
#include "models/catalogue.h"
#include "python/bindings.h"
#include "workbench/model/loop_loading.h"
#include "workbench/model/model_file_loading.h"

namespace torvane::python {
namespace {

// As the command "check"; what is wrong with the file is told as reports are.
bool Check(const std::string& path) {
  return Do(py::none(), [&](PythonSupervisor& supervisor) {
    if (NamesLoop(path)) {
      CheckLoop(path, supervisor);
      return true;
    }
    CheckModelFile(path, supervisor);
    return supervisor.Reports() == 0;
  });
}

}  // namespace
}  // namespace torvane::python

PYBIND11_MODULE(_engine, module) {
  using namespace torvane;
  using namespace torvane::python;
  module.doc() = "The simulator's engines; the package torvane dresses them for use.";
  module.attr("version") = Version();
  module.def("models", [] { return Catalogue().Names(); });
  module.def("check", &Check);
  py::class_<ScriptModel> model(module, "Model");
  BindModel(module, model);
  BindResponses(module, model);
  BindReadings(model);
  BindLinear(model);
  BindStudies(module, model);
}
