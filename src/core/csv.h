#pragma once

#include <span>
#include <string>
#include <vector>

namespace torvane {

/// The field as it stands in a CSV line: in quotes when it holds a comma, a quote or a line end.
std::string CsvField(const std::string& text);

/// A line of fields, line end included.
std::string CsvLine(const std::vector<std::string>& fields);

/// Adds fields at the end of a line.
inline void Append(std::vector<std::string>& line, const std::vector<std::string>& more) {
  line.insert(line.end(), more.begin(), more.end());
}

/// A line of numbers in their shortest exact form, line end included.
std::string CsvLine(std::span<const double> numbers);

/// Shortest text that reads back as the same single-precision number.
std::string FormatShortestSingle(float x);

}  // namespace torvane
