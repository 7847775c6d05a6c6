#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace torvane::drawing {

/// Why a loop has no drawing.
class DrawingFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A piece of a text that looks alike.
struct Run {
  enum class Kind {
    Plain,
    Constant,  ///< the name of one that a user changes
    Signal,    ///< the name of one that instruments are offered
    Quiet,
  };
  std::string Text;
  Kind What = Kind::Plain;
  bool operator==(const Run&) const = default;
};
using Line = std::vector<Run>;

struct SignalName {
  std::string Name;
  bool Offered = true;  ///< to instruments
};

/// Where a signal comes into a node.
struct Input {
  int From = -1;     ///< output
  std::string Mark;  ///< "+", "−", "×", "÷", or the name of a block's input
};

/// Where one comes out of it.
struct Output {
  int Node = -1;
  std::string Mark;
  std::vector<SignalName> Names;
  int SameAs = -1;  ///< while the graph is made: the output that it is another name of
};

/// A block of the diagram, a sum, or the name of a signal on its line.
struct Node {
  enum class Sign {
    Source,
    Sum,
    Product,
    Box,       ///< with its Texts, a line each
    Fraction,  ///< Texts: numerator and denominator
    Limiter,
    DeadZone,
    Quantiser,
    RateLimiter,
    Curve,
    Friction,
    Sampler,
    Switch,
    Label,
  };
  Sign What = Sign::Box;
  std::vector<Line> Texts = {};
  std::vector<Line> Remarks = {};          ///< small, below
  std::vector<std::string> Mentions = {};  ///< constants that it depends on
  std::vector<std::string> Aside = {};  ///< further ones, which only a condition of it depends on
  std::vector<std::string> Rooms = {};  ///< those of them whose values stand here
  std::string Clock = {};               ///< of a sampled block: its period
  bool IsPlant = false;                 ///< an integrator or a dead time, never on the way back
  bool Delays = false;                  ///< by a sample, in a difference equation
  std::vector<Input> Inputs = {};
  std::vector<int> Outputs = {};
};

/// A loop as blocks and the signals between them. Every input's output exists.
struct BlockGraph {
  std::string Name;
  std::string Description;
  std::vector<Node> Nodes;
  std::vector<Output> Outputs;
  int Command = -1;      ///< node of the command
  std::string Response;  ///< name of the signal that follows it, when the loop tells one
  /// What stands in no block: constants that only starts, resets or sample periods depend on, and
  /// signals that come from nothing and go nowhere.
  std::vector<std::string> OtherConstants;
  std::vector<std::string> OtherSignals;
  std::vector<std::string> Clocks;         ///< the sample periods, as they are written
  std::vector<std::string> ClockConstant;  ///< the constant that the clock of that index is, or ""
};

/// The position of a node or an output that exists.
inline std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

/// What is too large is drawn by nobody.
inline constexpr std::size_t MostNodes = 1500;

}  // namespace torvane::drawing
