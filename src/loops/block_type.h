#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "library/d_controller.h"
#include "loops/block.h"
#include "loops/blocks/wiring.h"
#include "loops/instruction.h"

namespace torvane::loops {

/// A signal that a block reads.
struct BlockInput {
  std::string_view Name;
  bool Needed = true;  ///< else it is 0
};

struct BlockParameter {
  enum class Kind { Number, List, Rows, Truth };

  std::string_view Name;
  std::string_view Unit = {};
  /// As a user would write it; a name of another parameter stands for its value. Empty: needed.
  std::string_view Default = {};
  Kind What = Kind::Number;
};

/// What a block is given with its numbers.
struct BlockMaking {
  Wiring Numbers;
  const ControllerClock* Clock = nullptr;  ///< of a sampled block
  double Step = 0.0;                       ///< of the solver, seconds
};

/// How a kind of block is made, and its Output and Update as instructions.
struct BlockCode {
  std::unique_ptr<Block> (*Make)(const BlockMaking& making);
  Instruction::Handler Output;
  Instruction::Handler Update;

  template <class Made>
  static BlockCode Of() {
    return {[](const BlockMaking& making) -> std::unique_ptr<Block> {
              return std::make_unique<Made>(making);
            },
            RunOutput<Made>, RunUpdate<Made>};
  }
};

/// A block that loops may have.
struct BlockType {
  /// When its outputs follow its inputs.
  enum class Timing {
    /// At the next evaluation, as in the built-in models: the block is seen a fraction of a step
    /// late, and a circle through it is no algebraic loop.
    Late,
    /// In the same evaluation.
    Now,
    /// At its samples.
    Sampled,
  };

  std::string_view Name;
  Timing When;
  std::vector<BlockInput> Inputs;
  std::vector<BlockParameter> Parameters;
  std::vector<std::string_view> Outputs;
  BlockCode Code;
  /// How many states it has; those of a sampled block are its own.
  int (*States)(const Placing& placing) = nullptr;
  /// Whether its outputs act on its inputs at once; without it they do, unless the block is late.
  bool (*Through)(const Placing& placing) = nullptr;
  /// What is wrong with the sizes of its lists; nullptr when nothing is.
  const char* (*WrongSizes)(const Placing& placing) = nullptr;
  /// Its Update does no more than to move the input to the output.
  bool Copies = false;

  /// It has an Update.
  bool Moves() const { return When == Timing::Late || States || Through; }
};

/// All blocks but the sources.
const std::vector<BlockType>& BlockTypes();
const BlockType* FindBlockType(std::string_view name);

/// The names of the sources: one that instruments excite, and one that they do not.
inline constexpr std::string_view CommandName = "Torvane.Sources.Command";
inline constexpr std::string_view GeneratorName = "Torvane.Sources.Generator";

}  // namespace torvane::loops
