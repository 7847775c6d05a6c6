#include "cli/study/study_columns.h"

#include "core/csv_table.h"
#include "study/row.h"
#include "study/setting.h"

namespace torvane::cli {
namespace {

void AppendColumns(const std::vector<Column>& more, std::vector<Column>& all) {
  all.insert(all.end(), more.begin(), more.end());
}

}  // namespace

std::vector<Column> MeasureColumns(const ZelModel& model, const MeasureOptions& options,
                                   const MeasureSet& set) {
  std::vector<Column> columns = Columns(MeasureCaptions(set));
  const std::vector<std::string> units = UnitsOfMeasures(model, options, set);
  for (std::size_t i = 0; i < columns.size(); ++i) columns[i].Unit = units[i];
  columns.push_back({ReasonCaption, "", true});
  return columns;
}

std::vector<Column> SettingColumns(const ZelModel& model, const std::vector<std::string>& names) {
  std::vector<Column> columns = Columns(names);
  for (Column& column : columns) {
    const ModelSetting setting = ModelSetting::Named(model.Bench(), column.Caption);
    column.Unit = setting.Unit();
    column.IsText = setting.IsChoice();
  }
  return columns;
}

std::vector<Column> StudyColumns(Study& study) {
  const ZelModel& model = study.First();
  std::vector<Column> columns{{RunCaption, ""}};
  AppendColumns(SettingColumns(model, study.Design().Names), columns);
  columns.push_back({MeasuresCaption, ""});
  AppendColumns(MeasureColumns(model, study.Measured(), study.Measures()), columns);
  return columns;
}

std::vector<Column> TableColumns(const std::string& table, const std::vector<std::string>& units) {
  CsvReader rows(table);
  CsvRow head;
  rows.Next(head);
  std::vector<Column> columns = Columns(head.Fields);
  for (Column& column : columns) {
    column.Unit = MeasureUnit(column.Caption);
    column.IsText = column.Caption == ReasonCaption;
  }
  // All but Run, Measures and Reason; a setting may have a name of theirs.
  if (units.size() + 3 != columns.size()) return columns;
  std::size_t mark = columns.size() - 1;
  while (columns[mark].Caption != MeasuresCaption) --mark;
  for (std::size_t k = 0; k < units.size(); ++k)
    columns[k + 1 + (k + 1 < mark ? 0 : 1)].Unit = units[k];
  return columns;
}

}  // namespace torvane::cli
