#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace torvane {

/// What was read of one run, each to the digits that are known; nothing where it cannot be told.
struct RunReadings {
  std::optional<double> Overshoot;    ///< past the final value, per cent of the step
  std::optional<double> Rise;         ///< from 10 to 90 % of the step
  std::optional<double> Settling;     ///< from the jump until within 2 % of the step
  std::optional<double> Delay;        ///< from the jump to 50 % of the step
  std::optional<double> RmsError;     ///< of command less response, over the window
  std::optional<double> Window;       ///< how long after the step the run went on
  std::optional<double> Bandwidth;    ///< where the gain of the response falls through -3 dB
  std::optional<double> Peaking;      ///< its greatest gain, when above 0.1 dB
  std::optional<double> GainMargin;   ///< the smallest of the open loop
  std::optional<double> PhaseMargin;  ///< the same
  std::optional<double> Sensitivity;  ///< the greatest of 1 / |1 + open loop|
  std::optional<double> Iae;          ///< integral of the error's magnitude, over the window
  std::optional<double> Ise;          ///< the same of its square
  std::optional<double> Peak;         ///< the largest magnitude of a signal about the step
  std::optional<double> Meets;        ///< 1 when all that is required is met, 0 when not
  /// Those that are better than any number: no peaking, a gain that may grow without end.
  std::vector<std::optional<double> RunReadings::*> Beyond;
  std::vector<std::string> Reasons;   ///< why some are not there
  std::vector<std::string> Warnings;  ///< what makes some less trustworthy
};

/// What a measure takes beside a step of the command: frequency responses, measured or from theory;
/// a signal whose peak is asked for; requirements.
enum class MeasureNeeds { Step, Loop, Peak, Requirements };

/// A measure of a run: what it is called, its unit, what it is read from. A new measure is a row of
/// Measures().
struct RunMeasure {
  const char* Caption = "";
  const char* Unit = "";
  std::optional<double> RunReadings::*Value = nullptr;
  MeasureNeeds Needs = MeasureNeeds::Step;
  bool MoreIsBetter = false;

  bool OfLoop() const { return Needs == MeasureNeeds::Loop; }
};

/// The caption of whether a run meets what is required.
inline constexpr const char* MeetsCaption = "Meets";

/// Which measures a run has.
struct MeasureSet {
  bool Loop = false;
  bool Peak = false;
  bool Requirements = false;
  bool OneWindow = false;  ///< all runs go on equally long

  bool Has(MeasureNeeds needs) const;
};

/// All measures, in the order of a table's columns.
std::span<const RunMeasure> Measures();

/// Captions of those that are measured.
std::vector<std::string> MeasureCaptions(const MeasureSet& set);
/// Their values, in the same order; nothing where one could not be measured.
std::vector<std::optional<double>> MeasureValues(const RunReadings& readings,
                                                 const MeasureSet& set);

/// The units of those that are measured, of a command and a signal with a peak that have these.
std::vector<std::string> MeasureUnits(const MeasureSet& set, const std::string& commandUnit,
                                      const std::string& peakUnit);

/// The unit of the measure of that caption; empty of none, and where a signal's unit decides.
std::string MeasureUnit(const std::string& caption);

}  // namespace torvane
