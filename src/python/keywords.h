#pragma once

#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <vector>

namespace torvane::python {

namespace py = pybind11;

/// What a number may be; it is finite, whatever it is.
enum class Accepts { Any, NotNegative, Positive };

/// Keyword arguments on their way into options. None leaves an option as it is; what cannot be
/// understood is a ValueError or TypeError.
class Keywords {
 public:
  explicit Keywords(py::dict given) : given_(std::move(given)) {}

  void Take(const char* name, std::optional<double>& value, Accepts accepts);
  void Take(const char* name, std::optional<int>& value);
  void Take(const char* name, std::optional<bool>& value);
  void Take(const char* name, bool& value);
  void Take(const char* name, std::string& value);
  void Take(const char* name, std::vector<std::string>& value);
  /// The place of a text among the names, without regard to case.
  void TakeChoice(const char* name, std::optional<int>& value,
                  const std::vector<std::string>& names);

 private:
  py::object Value(const char* name) const;

  py::dict given_;
};

}  // namespace torvane::python
