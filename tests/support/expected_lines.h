#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace torvane::test {

inline std::vector<std::string> LinesOf(std::istream& stream) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// What stands between the marks.
inline std::vector<std::string> Parts(const std::string& text, const std::string& mark) {
  std::vector<std::string> parts;
  std::size_t from = 0;
  for (std::size_t to = text.find(mark); to != std::string::npos; to = text.find(mark, from)) {
    parts.push_back(text.substr(from, to - from));
    from = to + mark.size();
  }
  parts.push_back(text.substr(from));
  return parts;
}

inline std::vector<std::string> LinesOfData(const std::string& file) {
  std::ifstream stream(TORVANE_TEST_DATA "/" + file);
  return LinesOf(stream);
}

/// What of the lines is not so in those of another file: the lines that it has not, and "gone"
/// for each of its own of which the lines have none up to the colon.
inline std::vector<std::string> LinesUnlike(const std::vector<std::string>& other,
                                            const std::vector<std::string>& lines) {
  const auto begins = [](const std::string& line) { return line.substr(0, line.find(':')); };
  std::vector<std::string> unlike;
  std::set<std::string> beginnings;
  for (const std::string& line : lines) {
    if (std::ranges::count(other, line) == 0) unlike.push_back(line);
    beginnings.insert(begins(line));
  }
  for (const std::string& line : other) {
    if (!beginnings.contains(begins(line))) unlike.push_back("gone " + line);
  }
  return unlike;
}

/// Compares lines with those of a file in tests/data. One that begins with "like FILE" has only
/// what is otherwise than in that file beside it. What differs is written to the folder for
/// temporary files: when it is right it is the new expectation.
inline void ExpectLines(const std::string& file, std::vector<std::string> lines) {
  const std::vector<std::string> expected = LinesOfData(file);
  if (!expected.empty() && expected[0].starts_with("like ")) {
    lines =
        LinesUnlike(LinesOfData(file.substr(0, file.find('/') + 1) + expected[0].substr(5)), lines);
    lines.insert(lines.begin(), expected[0]);
  }
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
