#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/variable.h"
#include "instruments/generator/wave.h"
#include "loops/block_type.h"
#include "loops/instruction.h"
#include "loops/problems.h"

namespace torvane::loops {

// What a text may come to. A file from a stranger can take neither much memory nor much time.
inline constexpr std::size_t MaxTextSize = std::size_t{64} << 10U;
inline constexpr int MaxStates = 200;
inline constexpr int MaxRegisters = 20000;
inline constexpr std::size_t MaxInstructions = 10000;
inline constexpr int MaxBlocks = 500;
inline constexpr std::size_t MaxSources = 8;
inline constexpr std::size_t MaxClocks = 100;
inline constexpr std::size_t MaxConstants = 500;
inline constexpr std::size_t MaxChoices = 1000;        ///< of a constant
inline constexpr std::size_t MaxRemembered = 4000000;  ///< numbers in all dead times

/// A checked loop, ready to be built: what it has, where its numbers lie, and the programs that
/// move them. Registers: the states' values, their slopes, the time, and everything else.
struct LoopPlan {
  struct Constant {
    std::string Name;
    std::string Unit;
    std::string Description;
    double Default = 0.0;
    double Min = 0.0;
    double Max = 0.0;
    std::vector<std::string> Choices;  ///< of a list, whose value is the choice's position
    double Factor = 1.0;               ///< from the loop's number to the constant's
    double First = 0.0;                ///< the loop's number of the first choice
    int Register = 0;

    /// The loop's number for a value of the constant.
    double InLoop(double value) const { return Choices.empty() ? value / Factor : value + First; }
  };
  struct Signal {
    std::string Name;
    std::string Unit;
    std::string Description;
    DisplayDefaults Display;
    int Register = 0;
    int State = -1;  ///< when the solver integrates it
    int Start = -1;  ///< register of its start value; 0 without one
    bool Offered = true;
  };
  struct State {
    std::string Name;
    int Start = -1;
  };
  struct Block {
    std::string Name;
    Place Where;
    const BlockType* Type = nullptr;
    Placing Numbers;
    int Clock = -1;
  };
  struct Clock {
    Place Where;
    int Start = 0;
    int Period = 0;
  };
  /// A number that follows from constants alone.
  struct Derived {
    std::string Name;
    Place Where;
    int Register = 0;
  };
  struct Source {
    std::string Name;
    WaveSettings Settings;
    int Register = 0;
    bool Excited = false;  ///< instruments may take its place
  };
  /// A response that the analysers offer.
  struct Pair {
    std::string Name;
    std::string Input;
    std::string Output;
    double PhaseAdd = 0.0;
  };
  /// What an analyser does to measure the open loop.
  struct Feedback {
    std::string Input;
    std::string Output;
    bool FromClosed = false;
    std::vector<std::pair<std::string, double>> Meanwhile;
    std::vector<std::pair<std::string, double>> Linear;
  };
  struct SetUp {
    std::optional<double> ScopeDivision;  ///< seconds
    std::vector<Pair> Pairs;
    Feedback Loop;
    std::optional<double> Amplitude;
    std::optional<double> SweepTo;
    std::optional<double> SettleTime;
    std::optional<int> FftOrder;
    std::optional<double> FftSamplePeriod;
    std::string Picture;
  };

  std::string Name;
  std::string Description;
  double Step = 1e-5;

  std::vector<Constant> Constants;
  std::vector<Derived> Follow;
  std::vector<Signal> Signals;
  std::vector<State> States;
  std::vector<Block> Blocks;
  std::vector<Clock> Clocks;
  std::vector<Source> Sources;
  SetUp Instruments;

  /// Of the constants.
  std::vector<double> Defaults() const {
    std::vector<double> values;
    for (const Constant& constant : Constants) values.push_back(constant.Default);
    return values;
  }

  int Registers = 0;
  int Time = 0;
  std::vector<std::pair<int, double>> Numbers;  ///< registers that never change

  Program AtRun;       ///< what depends on constants only
  Program AtStep;      ///< what depends on these and on the sources
  Program Between;     ///< the equations of an evaluation in which no clock has a sample due,
  Program Evaluation;  ///< or of any one; each with the blocks' updates behind them
  Program Equations;   ///< those of any evaluation, without
};

}  // namespace torvane::loops
