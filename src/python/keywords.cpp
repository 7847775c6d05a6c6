#include "python/keywords.h"

#include <pybind11/stl.h>

#include <cmath>

#include "core/names.h"
#include "core/text.h"

namespace torvane::python {

py::object Keywords::Value(const char* name) const {
  return given_.contains(name) ? py::object(given_[name]) : py::none();
}

void Keywords::Take(const char* name, std::optional<double>& value, Accepts accepts) {
  const py::object given = Value(name);
  if (given.is_none()) return;
  const double number = PyFloat_AsDouble(given.ptr());
  if (PyErr_Occurred()) throw py::error_already_set();
  const std::string text = FormatShortest(number);
  if (!std::isfinite(number)) {
    throw py::value_error(name + (" needs a finite number, not " + text));
  }
  if (accepts == Accepts::Positive && !(number > 0.0)) {
    throw py::value_error(name + (" must be above 0, not " + text));
  }
  if (accepts == Accepts::NotNegative && !(number >= 0.0)) {
    throw py::value_error(name + (" must not be negative, not " + text));
  }
  value = number;
}

void Keywords::Take(const char* name, std::optional<int>& value) {
  const py::object given = Value(name);
  if (given.is_none()) return;
  try {
    value = py::cast<int>(py::module_::import("operator").attr("index")(given));
  } catch (const py::cast_error&) {
    throw py::value_error(std::string(name) + " is out of range");
  }
}

void Keywords::Take(const char* name, std::optional<bool>& value) {
  const py::object given = Value(name);
  if (!given.is_none()) value = py::cast<bool>(given);
}

void Keywords::Take(const char* name, bool& value) {
  const py::object given = Value(name);
  if (!given.is_none()) value = py::cast<bool>(given);
}

void Keywords::Take(const char* name, std::string& value) {
  const py::object given = Value(name);
  if (!given.is_none()) value = py::str(given);
}

void Keywords::Take(const char* name, std::vector<std::string>& value) {
  const py::object given = Value(name);
  if (given.is_none()) return;
  value = py::isinstance<py::str>(given) ? std::vector<std::string>{py::str(given)}
                                         : py::cast<std::vector<std::string>>(given);
}

void Keywords::TakeChoice(const char* name, std::optional<int>& value,
                          const std::vector<std::string>& names) {
  std::string text;
  Take(name, text);
  if (text.empty()) return;
  const int index = IndexOfName(Lower(text), names);
  if (index < 0) throw py::value_error(UnknownNameText(name, text, names));
  value = index;
}

}  // namespace torvane::python
