#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "core/files/growing_file.h"
#include "study/sealed_rows.h"
#include "study/study_fault.h"

namespace torvane {

/// The rows that a study has so far, in a file beside its result, OUT.part: they outlast a kill,
/// and the same study goes on with those that are missing. Rows are sealed; what is damaged is no
/// row.
class PartFile {
 public:
  /// Opens OUT.part, made when there is none, and keeps it from other processes. One of another
  /// study, and what is no plain file (a link, a pipe, a device), is a StudyFault.
  PartFile(const std::string& out, const StudyIdentity& identity, const std::string& head);

  /// The rows that were there, by the number of their run from 0, line ends included.
  std::map<std::size_t, std::string> TakeRows() { return std::move(rows_); }
  /// Lines that were no rows; they are gone from the file.
  std::size_t Damaged() const { return damaged_; }
  const std::string& Name() const { return file_.Name(); }

  /// A row's line. It goes into the file in one piece.
  void Append(const std::string& row);
  /// From here on what was appended outlasts a power cut as well.
  void Flush();
  /// The result is whole elsewhere.
  void Remove();

 private:
  void Open();
  /// Takes the rows of a text that is not empty.
  void Take(const StudyIdentity& identity, const std::string& text);
  void Write(const std::string& text);
  /// The file with the rows that are there and nothing else.
  void Rewrite();
  StudyFault Fault(const std::string& what) const;

  GrowingFile file_;
  SealedRows seals_;
  std::map<std::size_t, std::string> rows_;
  std::size_t damaged_ = 0;
  bool flushed_ = true;
};

}  // namespace torvane
