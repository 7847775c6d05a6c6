#pragma once

#include <stdexcept>

namespace torvane {

/// A loop has no such linear model; the text says why in one line for the user.
class LinearFault : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace torvane
