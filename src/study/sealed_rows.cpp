#include "study/sealed_rows.h"

#include <algorithm>

#include "core/files/seal.h"
#include "core/text.h"

namespace torvane {
namespace {

constexpr const char* SealCaption = "Seal";

std::string_view WithoutEnd(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Commas in quotes count as well: what matters is that none was added.
std::string SealOf(std::string_view begin, std::string_view row) {
  const auto fields = std::count(row.begin(), row.end(), ',') + 1;
  return ChecksumText(std::string(begin).append(row)) + "-" + std::to_string(fields);
}

}  // namespace

SealedRows::SealedRows(const StudyIdentity& identity, const std::string& head)
    : begin_(identity.Line() + std::string(WithoutEnd(head)) + "," + SealCaption + "\n") {}

std::string SealedRows::Sealed(std::string_view row) const {
  row = WithoutEnd(row);
  return std::string(row) + "," + SealOf(begin_, row) + "\n";
}

std::optional<std::string> SealedRows::Unsealed(std::string_view line) const {
  line = WithoutEnd(line);
  const std::size_t comma = line.rfind(',');
  if (comma == std::string_view::npos) return {};
  const std::string_view row = line.substr(0, comma);
  if (line.substr(comma + 1) != SealOf(begin_, row)) return {};
  return std::string(row) + "\n";
}

std::optional<std::size_t> RunOf(std::string_view row) {
  const std::optional<int> number = ParseInteger(row.substr(0, row.find(',')));
  if (!number || *number < 1) return {};
  return static_cast<std::size_t>(*number) - 1;
}

std::string_view WholeLines::Next() {
  const std::size_t end = rest_.find('\n');
  const std::string_view line = rest_.substr(0, end == std::string_view::npos ? end : end + 1);
  rest_.remove_prefix(line.size());
  return line;
}

}  // namespace torvane
