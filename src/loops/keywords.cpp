#include <algorithm>
#include <array>
#include <utility>

#include "loops/parser.h"

namespace torvane::loops {

namespace {

constexpr std::array<std::string_view, 25> Words{
    "and",  "annotation",  "constant",  "der",       "discrete", "else",   "elseif",
    "end",  "enumeration", "equation",  "false",     "final",    "if",     "model",
    "not",  "or",          "parameter", "protected", "public",   "reinit", "then",
    "true", "type",        "when",      "within",
};

constexpr std::array<std::pair<std::string_view, std::string_view>, 40> Refused{{
    {"algorithm", "write equations; they may stand in any order"},
    {"assert", "give parameters a min and a max"},
    {"block", "a loop is one model; write its equations there"},
    {"break", "write equations with if"},
    {"class", "a loop is one model"},
    {"connect", "bind the block's input where it is declared: filter(u = error)"},
    {"connector", "signals are plain Real"},
    {"constrainedby", "name the block that you mean"},
    {"each", "there are no arrays; declare each one"},
    {"elsewhen", "write a second when"},
    {"encapsulated", "write \"model\" alone"},
    {"expandable", "signals are plain Real"},
    {"extends", "copy the equations into the model"},
    {"external", "write the equations themselves"},
    {"flow", "signals are plain Real; write the sum as an equation"},
    {"for", "there are no arrays; write each equation"},
    {"function", "write the expression as an equation of a signal of its own"},
    {"import", "write the full name, as in Torvane.Continuous.LowPass2"},
    {"impure", "write equations"},
    {"initial", "give the signal a start value: Real x(start = 1)"},
    {"inner", "declare the signal in the model that uses it"},
    {"input", "the command comes from Torvane.Sources.Command"},
    {"loop", "write each equation"},
    {"operator", "use the functions that there are"},
    {"outer", "declare the signal in the model that uses it"},
    {"output", "declare a Real; instruments are offered all that is not protected"},
    {"package", "a file holds one model"},
    {"parallel", "write equations"},
    {"partial", "write \"model\" alone"},
    {"pure", "write equations"},
    {"record", "declare each signal"},
    {"redeclare", "declare the block that you mean"},
    {"replaceable", "declare the block that you mean"},
    {"return", "write equations with if"},
    {"stream", "signals are plain Real"},
    {"terminate", "choose the time to run where you run the loop"},
    {"while", "write equations with if"},
    {"edge", "compare with pre(x) in a when"},
    {"change", "compare with pre(x) in a when"},
    {"smooth", "write the expression alone"},
}};

}  // namespace

std::string AdviceFor(std::string_view word) {
  const auto found = std::find_if(Refused.begin(), Refused.end(),
                                  [&](const auto& refused) { return refused.first == word; });
  return found == Refused.end() ? std::string() : std::string(found->second);
}

bool IsKeyword(std::string_view word) {
  // The last ones are functions, whose names are free.
  constexpr auto last = Refused.end() - 3;
  static_assert(std::is_sorted(Words.begin(), Words.end()) &&
                std::is_sorted(Refused.begin(), last));
  // Most names are none at a glance.
  if (word.size() < 2 || word.front() < 'a' || word.front() > 'z') return false;
  if (std::binary_search(Words.begin(), Words.end(), word)) return true;
  const auto* const found =
      std::lower_bound(Refused.begin(), last, word,
                       [](const auto& refused, std::string_view w) { return refused.first < w; });
  return found != last && found->first == word;
}

}  // namespace torvane::loops
