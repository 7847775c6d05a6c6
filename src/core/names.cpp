#include "core/names.h"

#include <algorithm>
#include <tuple>

namespace torvane {
namespace {

// Characters to insert, remove or replace (Levenshtein), by rows of the distance table.
std::size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

// The smaller, the likelier.
std::tuple<int, std::size_t> Rank(const std::string& text, const std::string& name) {
  const auto position = text.empty() ? std::string::npos : name.find(text);
  const int form = position == 0 ? 0 : position != std::string::npos ? 1 : 2;
  return {form, EditDistance(text, name)};
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
  const auto nearest =
      std::min_element(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
        return Rank(wanted, Lower(a)) < Rank(wanted, Lower(b));
      });
  return nearest == names.end() ? std::string() : *nearest;
}

std::string UnknownNameText(const std::string& what, const std::string& text,
                            const std::vector<std::string>& names) {
  const std::string nearest = NearestName(text, names);
  return "unknown " + what + " \"" + text + "\"" +
         (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?");
}

int IndexOfName(const std::string& text, const std::vector<std::string>& names) {
  const auto found = std::find(names.begin(), names.end(), text);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

}  // namespace torvane
