#include "loops/block_type.h"

#include <algorithm>

#include "loops/blocks/continuous.h"
#include "loops/blocks/linear.h"
#include "loops/blocks/nonlinear.h"
#include "loops/blocks/sampled.h"

namespace torvane::loops {

const std::vector<BlockType>& BlockTypes() {
  static const std::vector<BlockType> all = [] {
    std::vector<BlockType> types = LibraryBlockTypes();
    for (const auto& more : {LinearBlockTypes(), NonlinearBlockTypes(), SampledBlockTypes()}) {
      types.insert(types.end(), more.begin(), more.end());
    }
    return types;
  }();
  return all;
}

const BlockType* FindBlockType(std::string_view name) {
  const auto& all = BlockTypes();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const BlockType& t) { return t.Name == name; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace torvane::loops
