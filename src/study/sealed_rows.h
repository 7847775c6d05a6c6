#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "study/identity.h"

namespace torvane {

/// The largest file of a share: what a million runs come to.
inline constexpr std::size_t MaxShareSize = std::size_t{256} << 20U;

/// How the rows of a share stand in a file, finished or not: the study's identity, the captions and
/// in each row's last field a seal, by which a row that is damaged, or is another study's, is
/// known.
class SealedRows {
 public:
  /// `head`: the captions of the table, as HeadLine makes them.
  SealedRows(const StudyIdentity& identity, const std::string& head);

  /// How a file begins.
  const std::string& Begin() const { return begin_; }
  /// The row's line with its seal.
  std::string Sealed(std::string_view row) const;
  /// The row's line that was sealed; nothing when it was not, or is changed in any way.
  std::optional<std::string> Unsealed(std::string_view line) const;

 private:
  std::string begin_;
};

/// The number of the row's run, from 0; nothing when it begins with none.
std::optional<std::size_t> RunOf(std::string_view row);

/// Takes the lines of a text, line ends included, one by one.
class WholeLines {
 public:
  explicit WholeLines(std::string_view text) : rest_(text) {}
  /// Empty at the end; what follows the last line end is a line too.
  std::string_view Next();

 private:
  std::string_view rest_;
};

}  // namespace torvane
