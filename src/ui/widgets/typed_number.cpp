#include "ui/widgets/typed_number.h"

#include <string_view>
#include <utility>

#include "core/text.h"

namespace torvane {

namespace {

constexpr std::pair<std::string_view, const char*> Suffixes[] = {
    {"p", "e-12"}, {"n", "e-9"}, {"u", "e-6"}, {"\u00b5", "e-6"}, {"\u03bc", "e-6"},
    {"m", "e-3"},  {"k", "e3"},  {"M", "e6"},  {"G", "e9"}};

}  // namespace

std::string WithoutSuffix(const std::string& text) {
  for (const auto& [suffix, power] : Suffixes) {
    std::string_view number = Trimmed(text);
    if (!number.ends_with(suffix)) continue;
    number = Trimmed(number.substr(0, number.size() - suffix.size()));
    const std::string plain = std::string(number) + power;
    if (ParseNumber(number) && ParseNumber(plain)) return plain;
  }
  return text;
}

}  // namespace torvane
