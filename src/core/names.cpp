#include "core/names.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace torvane {
namespace {

// Characters to insert, remove or replace (Levenshtein), by rows of the distance table; from the
// limit on any number that is no less.
std::size_t EditDistance(const std::string& a, const std::string& b, std::size_t limit) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    std::size_t least = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min(replaced, std::min(row[j], row[j - 1]) + 1);
      least = std::min(least, row[j]);
    }
    if (least >= limit) return least;
  }
  return row.back();
}

// The smaller, the likelier.
using Rank = std::tuple<int, std::size_t>;

int FormOf(const std::string& text, const std::string& name) {
  const auto position = text.empty() ? std::string::npos : name.find(text);
  return position == 0 ? 0 : position != std::string::npos ? 1 : 2;
}

constexpr std::size_t FewNames = 8;

// Without the dashes that all options begin with.
std::size_t LettersOf(const std::string& name) {
  return name.size() - std::min(name.size(), name.find_first_not_of('-'));
}

bool IsNear(const std::string& wanted, const std::string& name, const Rank& rank) {
  const auto& [form, distance] = rank;
  if (form < 2) return true;
  const std::size_t letters = std::max(LettersOf(wanted), LettersOf(name));
  if (distance <= std::max<std::size_t>(1, letters * 2 / 5)) return letters > 1;
  return distance == 2 &&
         std::is_permutation(wanted.begin(), wanted.end(), name.begin(), name.end());
}

}  // namespace

std::string Lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::string NearestName(const std::string& text, const std::vector<std::string>& names) {
  // Names are short: a longer text is nobody's misspelling, and the distance table is its length
  // times a name's.
  const std::string wanted = Lower(text.substr(0, 80));
  const std::string* nearest = nullptr;
  Rank best{};
  for (const std::string& candidate : names) {
    const std::string name = Lower(candidate);
    const int form = FormOf(wanted, name);
    // No fewer characters have to be changed than one has more than the other.
    const std::size_t fewest =
        std::max(name.size(), wanted.size()) - std::min(name.size(), wanted.size());
    if (nearest && Rank{form, fewest} >= best) continue;
    const std::size_t limit =
        nearest && form == std::get<0>(best) ? std::get<1>(best) : std::string::npos;
    const Rank rank{form, EditDistance(wanted, name, limit)};
    if (nearest && rank >= best) continue;
    nearest = &candidate;
    best = rank;
  }
  return nearest && IsNear(wanted, Lower(*nearest), best) ? *nearest : std::string();
}

std::string UnknownNameText(const std::string& what, const std::string& text,
                            const std::vector<std::string>& names) {
  const std::string nearest = NearestName(text, names);
  std::string fault = "unknown " + what + " \"" + text + "\"";
  if (!nearest.empty()) return fault.append("; did you mean \"").append(nearest).append("\"?");
  if (names.size() > FewNames) return fault;
  std::string separator = "; known: ";
  for (auto name = names.begin(); name != names.end(); ++name) {
    if (std::find(names.begin(), name, *name) != name) continue;
    fault.append(std::exchange(separator, ", ")).append(*name);
  }
  return fault;
}

int IndexOfName(const std::string& text, const std::vector<std::string>& names) {
  const auto found = std::find(names.begin(), names.end(), text);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

}  // namespace torvane
