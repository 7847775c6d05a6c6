#pragma once

#include <cstddef>
#include <string>

#include "core/files/input_file.h"

namespace torvane {

/// Of a table that a bench has written.
inline constexpr std::size_t MaxBenchTable = std::size_t{16} << 20U;
inline constexpr int BenchPatience = 2000;  ///< milliseconds that a pipe may stay silent

/// Reads a text file to its end, and no more of it than it may have. Empty, or one line that says
/// what is wrong with it: it cannot be opened or read, is too large or is no plain text. What is
/// too large is refused before it is read where its size is known. `patience`: milliseconds that a
/// pipe may stay silent.
std::string ReadTextFile(const std::string& path, std::size_t limit, std::string& text,
                         int patience = InputFile::WaitForEver);

}  // namespace torvane
