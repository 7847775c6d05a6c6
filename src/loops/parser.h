#pragma once

#include <string_view>

#include "loops/problems.h"
#include "loops/syntax.h"

namespace torvane::loops {

/// Takes a loop's text apart. What cannot be read is reported and left out; reading goes on behind
/// it.
ModelText Parse(std::string_view text, ProblemList& problems);

/// What to write instead of something that the language of loops has not; empty for a word that is
/// no keyword of such a thing.
std::string AdviceFor(std::string_view word);

/// Words that cannot be names.
bool IsKeyword(std::string_view word);

}  // namespace torvane::loops
