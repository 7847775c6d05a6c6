#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/io/result_file.h"

namespace CLI {
class App;
}

namespace torvane::cli {

/// How a command writes its table.
struct TableForm {
  std::optional<int> Format;  ///< 0: CSV, 1: JSON
  bool Units = false;         ///< in the captions

  bool IsJson() const { return Format == 1; }
  /// Whether it is what --merge and a part file's owner read.
  bool IsPlain() const { return !IsJson() && !Units; }
};

/// --format alone, for tables whose units stand in a column or nowhere.
void AddFormat(CLI::App& command, TableForm& form);
/// --units alone.
void AddUnits(CLI::App& command, TableForm& form);
/// --format and --units.
void AddTableForm(CLI::App& command, TableForm& form);

/// A column of a table.
struct Column {
  std::string Caption;
  std::string Unit;
  bool IsText = false;  ///< its fields are texts, also where they look like numbers
};

/// Columns without units.
std::vector<Column> Columns(const std::vector<std::string>& captions);

/// Writes a table row by row: CSV with a line of captions or, as JSON, a list with an object for
/// each row, in which a field that is empty or no finite number is null. However it ends, what has
/// been written is a whole table.
class TableWriter {
 public:
  TableWriter(const std::vector<Column>& columns, const TableForm& form, ResultFile& file);
  ~TableWriter();
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  void Write(const std::vector<std::string>& fields);
  void Write(std::span<const double> numbers);
  /// A row that is a line of CSV already, line end included.
  void WriteLine(const std::string& line);
  /// No row follows.
  void End();

 private:
  void WriteObject(const std::vector<std::string>& values);

  ResultFile& file_;
  bool json_;
  bool ended_ = false;
  bool first_ = true;
  std::vector<std::string> keys_;
  std::vector<bool> texts_;
};

}  // namespace torvane::cli
