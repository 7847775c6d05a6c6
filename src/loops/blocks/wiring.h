#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace torvane::loops {

/// Where a block's numbers lie among the registers of its loop. States come first, then their
/// slopes.
struct Placing {
  std::vector<int> Inputs;
  std::vector<int> Outputs;
  /// By parameter; of a list its items, of rows the items row by row.
  std::vector<std::vector<int>> Parameters;
  /// By parameter: how many items a row has, and whether the text gives it.
  std::vector<int> RowLengths;
  std::vector<bool> Given;
  int FirstState = 0;
  int States = 0;
};

/// What filters say of a frequency or a damping below 0.
inline constexpr const char* NegativeFilter = "neither frequency nor damping may be below 0";

/// Holds of no placing.
inline bool Never(const Placing& /*placing*/) {
  return false;
}

/// A block's numbers in one loop that runs.
class Wiring {
 public:
  /// The registers stay where they are; slopes follow `stateCount` states.
  Wiring(const Placing& placing, double* registers, int stateCount)
      : placing_(placing), registers_(registers), stateCount_(stateCount) {}

  const double* Input(std::size_t index) const { return registers_ + placing_.Inputs[index]; }
  double* Output(std::size_t index) const { return registers_ + placing_.Outputs[index]; }
  double Parameter(std::size_t index) const {
    return registers_[placing_.Parameters[index].front()];
  }
  std::vector<double> List(std::size_t index) const {
    std::vector<double> values;
    for (const int reg : placing_.Parameters[index]) values.push_back(registers_[reg]);
    return values;
  }
  std::size_t ListSize(std::size_t index) const { return placing_.Parameters[index].size(); }
  /// Whether these parameters are 0 or above.
  template <class... Index>
  bool NotNegative(Index... index) const {
    return ((Parameter(static_cast<std::size_t>(index)) >= 0.0) && ...);
  }
  std::size_t ParameterCount() const { return placing_.Parameters.size(); }
  double* States() const { return registers_ + placing_.FirstState; }
  double* Slopes() const { return registers_ + stateCount_ + placing_.FirstState; }

 private:
  const Placing& placing_;
  double* registers_;
  int stateCount_;
};

}  // namespace torvane::loops
