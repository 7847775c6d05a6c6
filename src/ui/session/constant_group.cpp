#include "ui/session/constant_group.h"

#include <algorithm>

#include "core/constant.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/model.h"
#include "core/text.h"
#include "ui/session/session.h"

namespace torvane {

namespace {

constexpr const char* Keyword = "Constant";

// As an entry of its own would.
void Store(Constant& constant, double value) {
  constant.Redo({&constant, {}, NumberChange{constant.Value(), value}});
}

}  // namespace

void ConstantGroup::Set(const std::map<std::string, double>& values, const std::string& caption) {
  const ZelBenchTop& bench = session_.Model()->Bench();
  RecordsChange change;
  for (const auto& [name, value] : values) {
    const Constant* const constant = bench.FindConst(name);
    if (!constant) continue;
    const double limited = std::clamp(value, constant->Lower(), constant->Upper());
    if (limited == constant->Value()) continue;
    AppendRecord(change.Before, Keyword, {name, FormatShortest(constant->Value())});
    AppendRecord(change.After, Keyword, {name, FormatShortest(limited)});
  }
  if (change.After.empty()) return;
  Restore(change.After);
  session_.Model()->Bench().History().Push({this, caption, change});
}

void ConstantGroup::Undo(const UndoEntry& entry) {
  Restore(std::get<RecordsChange>(entry.What).Before);
}

void ConstantGroup::Redo(const UndoEntry& entry) {
  Restore(std::get<RecordsChange>(entry.What).After);
}

void ConstantGroup::Restore(const std::string& values) {
  const ZelBenchTop& bench = session_.Model()->Bench();
  LineReader lines(values);
  for (std::string line; lines.Next(line);) {
    const Record record = ParseRecord(line, lines.Number());
    Constant* const constant = bench.FindConst(record.Field(1));
    if (constant) Store(*constant, ParseNumber(record.Field(2)).value_or(constant->Value()));
  }
}

}  // namespace torvane
