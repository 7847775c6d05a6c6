#pragma once

#include <cstring>
#include <string>

#include "instruments/study_data.h"

namespace torvane::cli {

/// What a process hands back of a run: the row, line end included, and, where it is to be drawn,
/// the response.
struct RunResult {
  std::string Row;
  StudyTrace Trace;

  std::string Packed() const {
    const std::size_t half = Trace.Times.size() * sizeof(float);
    std::string packed = Row;
    packed.resize(Row.size() + 2 * half);
    if (half == 0) return packed;
    std::memcpy(packed.data() + Row.size(), Trace.Times.data(), half);
    std::memcpy(packed.data() + Row.size() + half, Trace.Values.data(), half);
    return packed;
  }
  static RunResult Unpacked(const std::string& packed) {
    const std::size_t row = packed.find('\n') + 1;
    const std::size_t half = (packed.size() - row) / 2;
    RunResult result{packed.substr(0, row), {}};
    if (half == 0) return result;
    result.Trace.Times.resize(half / sizeof(float));
    result.Trace.Values.resize(half / sizeof(float));
    std::memcpy(result.Trace.Times.data(), packed.data() + row, half);
    std::memcpy(result.Trace.Values.data(), packed.data() + row + half, half);
    return result;
  }
};

}  // namespace torvane::cli
