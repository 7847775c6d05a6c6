#include "cli/io/table.h"

#include <CLI/CLI.hpp>

#include "cli/io/json.h"
#include "cli/io/number_options.h"
#include "core/csv.h"
#include "core/csv_table.h"
#include "core/text.h"
#include "workbench/work_fault.h"

namespace torvane::cli {

void AddFormat(CLI::App& command, TableForm& form) {
  AddChoice(command, "--format", form.Format, {"csv", "json"},
            "Write the table as CSV, or as JSON: a list with an object for each row");
}

void AddUnits(CLI::App& command, TableForm& form) {
  command.add_flag("--units", form.Units, "Write units into the captions, as in \"Gain (dB)\"");
}

void AddTableForm(CLI::App& command, TableForm& form) {
  AddFormat(command, form);
  AddUnits(command, form);
}

std::vector<Column> Columns(const std::vector<std::string>& captions) {
  std::vector<Column> columns;
  for (const std::string& caption : captions) columns.push_back({caption, "", false});
  return columns;
}

namespace {

std::string FieldValue(const std::string& field, bool text) {
  if (text) return JsonText(field);
  if (const auto number = ParseNumber(field)) return JsonNumber(*number);
  const bool none = field.empty() || field == "nan" || field == "inf" || field == "-inf";
  return none ? "null" : JsonText(field);
}

}  // namespace

TableWriter::TableWriter(const std::vector<Column>& columns, const TableForm& form,
                         ResultFile& file)
    : file_(file), json_(form.IsJson()) {
  std::vector<std::string> captions;
  for (const Column& column : columns) {
    captions.push_back(column.Caption);
    if (form.Units && !column.Unit.empty()) captions.back() += " (" + column.Unit + ")";
    keys_.push_back(JsonText(captions.back()) + ": ");
    texts_.push_back(column.IsText);
  }
  file_.Write(json_ ? "[" : CsvLine(captions));
}

TableWriter::~TableWriter() {
  try {
    End();
  } catch (const WorkFault&) {
    // Whatever ended the work before has been told; that nothing can be written would be, too.
  }
}

void TableWriter::Write(const std::vector<std::string>& fields) {
  if (!json_) return file_.Write(CsvLine(fields));
  std::vector<std::string> values;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    values.push_back(FieldValue(fields[i], texts_[i]));
  }
  WriteObject(values);
}

void TableWriter::Write(std::span<const double> numbers) {
  if (!json_) return file_.Write(CsvLine(numbers));
  std::vector<std::string> values;
  for (const double number : numbers) values.push_back(JsonNumber(number));
  WriteObject(values);
}

void TableWriter::WriteLine(const std::string& line) {
  if (!json_) return file_.Write(line);
  Write(ParseCsv(line).front().Fields);
}

void TableWriter::WriteObject(const std::vector<std::string>& values) {
  std::string object = first_ ? "\n{" : ",\n{";
  first_ = false;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) object += ", ";
    object += keys_[i];
    object += values[i];
  }
  object += '}';
  file_.Write(object);
}

void TableWriter::End() {
  if (ended_) return;
  ended_ = true;
  if (json_) file_.Write(first_ ? "]\n" : "\n]\n");
}

}  // namespace torvane::cli
