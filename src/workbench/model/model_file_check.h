#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "core/model.h"

namespace torvane {

/// Finds the lines of a model file that loading passes over without a word: lines that mean nothing
/// to the model, values that it takes otherwise than they stand, characters that have no place in a
/// text, a last line that may be cut short. `model` is what the text was loaded into; lines in
/// `reported` are known already. `remark` is told each line's number, from 1, and what is found.
void RemarkOnLines(std::string_view text, const ZelModel& model, const std::set<int>& reported,
                   const std::function<void(int line, const std::string& text)>& remark);

}  // namespace torvane
