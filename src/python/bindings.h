#pragma once

#include <pybind11/pybind11.h>

#include "python/keywords.h"
#include "python/python_supervisor.h"
#include "python/script_model.h"
#include "workbench/measure/measurement.h"

namespace torvane::python {

// Each adds a part of the module.
void BindModel(py::module_& module, py::class_<ScriptModel>& model);
void BindResponses(py::module_& module, py::class_<ScriptModel>& model);
void BindReadings(py::class_<ScriptModel>& model);
void BindLinear(py::class_<ScriptModel>& model);
void BindStudies(py::module_& module, py::class_<ScriptModel>& model);

/// What measure, study and tune have in common, of the model as it stands.
MeasureOptions MeasureOptionsOf(const ScriptModel& model, Keywords& keywords);

}  // namespace torvane::python
