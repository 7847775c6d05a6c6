#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <utility>
#include <vector>

namespace torvane::python {

namespace py = pybind11;

/// A one-dimensional array of the numbers, which it owns: nothing is copied.
template <class T>
py::array_t<T> ArrayOf(std::vector<T>&& numbers) {
  auto owned = std::make_unique<std::vector<T>>(std::move(numbers));
  const auto size = static_cast<py::ssize_t>(owned->size());
  const T* const data = owned->data();
  const py::capsule owner(owned.release(),
                          [](void* vector) { delete static_cast<std::vector<T>*>(vector); });
  return py::array_t<T>(size, data, owner);
}

}  // namespace torvane::python
