#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torvane {

/// What tells one study from another, by names: the model, its set-up, the runs, how they are
/// measured.
class StudyIdentity {
 public:
  /// A study in the present form of files.
  StudyIdentity();

  /// Something that a message can tell.
  void Add(const std::string& what, const std::string& value);
  /// Something too long for that, by its checksum.
  void AddSum(const std::string& what, std::string_view text);

  /// As it begins a file: one CSV line, line end included.
  std::string Line() const;
  /// What Line wrote, with or without its end; nothing of any other text.
  static std::optional<StudyIdentity> Parse(std::string_view line);

  /// The value of that name, empty when there is none.
  std::string Value(const std::string& what) const;

  /// In what the other is another study, "--until is 0.3, not 0.1", of several the first that can
  /// be told; empty for the same one. Which share it is makes no other study unless that counts.
  std::string Difference(const StudyIdentity& other, bool sharesDiffer) const;

 private:
  std::vector<std::pair<std::string, std::string>> parts_;
};

/// The share of a study, K/N, in its identity; none without it.
inline constexpr const char* SharePart = "share";
/// The number of its runs.
inline constexpr const char* RunsPart = "runs";
/// The units of its settings and then of its measures, a CSV line.
inline constexpr const char* UnitsPart = "units";

}  // namespace torvane
