#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace torvane::test {

inline std::vector<std::string> LinesOf(std::istream& stream) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// Compares lines with those of a file in tests/data. What differs is written to the folder for
/// temporary files: when it is right it is the new expectation.
inline void ExpectLines(const std::string& file, const std::vector<std::string>& lines) {
  std::ifstream stream(TORVANE_TEST_DATA "/" + file);
  const std::vector<std::string> expected = LinesOf(stream);
  const auto [is, was] =
      std::mismatch(lines.begin(), lines.end(), expected.begin(), expected.end());
  if (is == lines.end() && was == expected.end()) return;
  std::string name = file;
  std::replace(name.begin(), name.end(), '/', '-');
  std::ofstream written(testing::TempDir() + name);
  for (const std::string& line : lines) written << line << '\n';
  ADD_FAILURE() << file << ':' << was - expected.begin() + 1
                << "\nexpected: " << (was == expected.end() ? "no more" : *was)
                << "\nis:       " << (is == lines.end() ? "no more" : *is)
                << "\nAll of it: " << testing::TempDir() << name;
}

}  // namespace torvane::test
