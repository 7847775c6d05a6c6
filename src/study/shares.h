#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "study/identity.h"

namespace torvane {

/// Puts the shares of a study together. Files of different studies, damaged rows, and runs that are
/// missing or there twice, are StudyFaults.
class Shares {
 public:
  /// The file of a share or, alone, a whole result.
  void Add(const std::string& path);

  /// The whole table.
  std::string Table() const;

  /// The units of its settings and then of its measures; none of a whole result, which does not
  /// say them.
  std::vector<std::string> Units() const;

 private:
  void AddShare(const std::string& path, std::string_view text, const StudyIdentity& identity);
  void CheckThatNoneIsMissing() const;

  std::optional<StudyIdentity> identity_;
  std::string first_;  ///< the file that it was read from
  std::string head_;
  std::map<std::size_t, std::string> rows_;
  std::string whole_;
};

}  // namespace torvane
