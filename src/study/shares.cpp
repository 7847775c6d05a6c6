#include "study/shares.h"

#include <algorithm>

#include "core/csv_table.h"
#include "core/files/text_file.h"
#include "core/text.h"
#include "study/row.h"
#include "study/sealed_rows.h"
#include "study/study_fault.h"

namespace torvane {
namespace {

constexpr std::size_t MostMissingNamed = 5;

// The captions without the seal's.
std::string HeadOf(std::string_view line) {
  return std::string(line.substr(0, line.rfind(','))) + "\n";
}

// A whole result has all runs, in turn.
void CheckWhole(const std::string& path, std::string_view text) {
  CsvReader rows(text);
  CsvRow head;
  rows.Next(head);
  int run = 0;
  for (CsvRow row; rows.Next(row);) {
    const std::string place = path + ":" + std::to_string(row.Line) + ": ";
    if (!row.Whole || row.Fields.size() != head.Fields.size()) {
      throw StudyFault(place + "no row of the study");
    }
    if (row.Fields.front() == std::to_string(++run)) continue;
    throw StudyFault(place + "run " + std::to_string(run) + " is missing here");
  }
}

constexpr std::string_view PartEnding = ".part";

// What stands of a study or a share that has not come to its end.
void CheckFinished(const std::string& path, std::string_view text, const StudyIdentity& identity) {
  const bool part = path.ends_with(PartEnding);
  if (!part && !identity.Value(SharePart).empty()) return;
  const auto lines = std::count(text.begin(), text.end(), '\n');
  const auto runs = std::max<std::ptrdiff_t>(lines - 2, 0);
  std::string fault = path + " is unfinished: " + std::to_string(runs);
  fault += runs == 1 ? " run stands in it; " : " runs stand in it; ";
  fault += "the command that began it goes on with it, with --out ";
  fault += part ? path.substr(0, path.size() - PartEnding.size()) : "as it was";
  throw StudyFault(fault);
}

}  // namespace

void Shares::Add(const std::string& path) {
  std::string text;
  const std::string fault = ReadTextFile(path, MaxShareSize, text);
  if (!fault.empty()) throw StudyFault(StudyFault::Kind::File, fault);
  const auto identity = StudyIdentity::Parse(WholeLines(text).Next());
  if (identity) {
    if (!whole_.empty()) throw StudyFault(first_ + " is no share of a study");
    AddShare(path, text, *identity);
    return;
  }
  if (!text.starts_with(std::string(RunCaption) + ",")) {
    throw StudyFault(path + " is no result of a study");
  }
  if (!first_.empty()) {
    throw StudyFault((whole_.empty() ? path : first_) + " is no share of a study");
  }
  CheckWhole(path, text);
  first_ = path;
  whole_ = std::move(text);
}

void Shares::AddShare(const std::string& path, std::string_view text,
                      const StudyIdentity& identity) {
  CheckFinished(path, text, identity);
  WholeLines lines(text);
  lines.Next();
  const std::string head = HeadOf(lines.Next());
  if (!identity_) {
    identity_ = identity;
    first_ = path;
    head_ = head;
  }
  const std::string difference = identity_->Difference(identity, false);
  if (!difference.empty()) {
    throw StudyFault(path + " is of another study than " + first_ + ": " + difference);
  }
  const SealedRows seals(identity, head);
  int number = 2;
  for (std::string_view line = lines.Next(); !line.empty(); line = lines.Next()) {
    const std::string place = path + ":" + std::to_string(++number) + ": ";
    std::optional<std::string> row = seals.Unsealed(line);
    const std::optional<std::size_t> run = row ? RunOf(*row) : std::nullopt;
    if (!run) throw StudyFault(place + "a damaged row; its share is to be done again");
    if (rows_.emplace(*run, std::move(*row)).second) continue;
    throw StudyFault(place + "run " + std::to_string(*run + 1) + " is there twice");
  }
}

void Shares::CheckThatNoneIsMissing() const {
  const std::string runs = identity_->Value(RunsPart);
  const auto count = static_cast<std::size_t>(ParseInteger(runs).value_or(0));
  const std::size_t missing = count - std::min(count, rows_.size());
  if (missing == 0) return;
  std::string text = std::to_string(missing) + " of " + runs +
                     (missing == 1 ? " runs is in no file:" : " runs are in no file:");
  std::size_t named = 0;
  for (std::size_t run = 0; named < std::min(missing, MostMissingNamed); ++run) {
    if (rows_.contains(run)) continue;
    text += (named++ > 0 ? ", " : " ") + std::to_string(run + 1);
  }
  throw StudyFault(text + (missing > named ? ", ..." : ""));
}

std::string Shares::Table() const {
  if (!whole_.empty()) return whole_;
  if (!identity_) throw StudyFault("there is no result of a share to put together");
  CheckThatNoneIsMissing();
  std::string table = head_;
  for (const auto& row : rows_) table += row.second;
  return table;
}

std::vector<std::string> Shares::Units() const {
  const std::string units = identity_ ? identity_->Value(UnitsPart) : "";
  CsvRow row;
  CsvReader(units).Next(row);
  return row.Fields;
}

}  // namespace torvane
