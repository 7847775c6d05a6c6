#include "models/experiment.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "core/files/model_file_lines.h"
#include "core/text.h"

namespace torvane {

namespace {

constexpr std::array<std::pair<std::string_view, InstrumentKind>, 5> Kinds{
    {{"Scope", InstrumentKind::Scope},
     {"Generator", InstrumentKind::WaveGenerator},
     {"Analyser", InstrumentKind::FftAnalyser},
     {"Sweep", InstrumentKind::SweptSine},
     {"Meters", InstrumentKind::Meter}}};

constexpr std::array StepReadings{"Overshoot", "Rise", "Settling", "Delay"};
constexpr std::array TraceReadings{"Mean",    "RMS",          "Minimum",
                                   "Maximum", "Peak to peak", "Frequency"};
constexpr std::array MarginReadings{"Phase Margin", "Phase Margin Frequency", "Gain Margin",
                                    "Gain Margin Frequency"};
constexpr std::array ResponseReadings{"Gain", "Phase"};

template <std::size_t Count>
bool IsOneOf(const std::array<const char*, Count>& readings, const std::string& reading) {
  return std::find(readings.begin(), readings.end(), reading) != readings.end();
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    parts.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + separator.size());
  }
}

/// The two sides of the first separator; nothing without it.
std::optional<std::pair<std::string, std::string>> Sides(const std::string& text,
                                                         std::string_view separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string::npos) return {};
  return std::pair(text.substr(0, at), text.substr(at + separator.size()));
}

bool AreOfOne(const ExperimentSetting& one, const ExperimentSetting& other) {
  return one.Of == other.Of && one.Name == other.Name;
}

std::optional<ExperimentSetting> ReadSetting(const std::string& text) {
  const auto sides = Sides(text, " = ");
  if (!sides || sides->first.empty() || sides->second.empty()) return {};
  const auto address = Sides(sides->first, ": ");
  return address ? ExperimentSetting{address->first, address->second, sides->second}
                 : ExperimentSetting{"", sides->first, sides->second};
}

bool ReadSettings(const std::string& text, std::vector<ExperimentSetting>& into) {
  for (const std::string& part : Split(text, ", ")) {
    const auto setting = ReadSetting(part);
    if (!setting) return false;
    into.push_back(*setting);
  }
  return true;
}

/// A reading has a signal, a frequency or neither, as its kind asks for.
bool IsComplete(const ExperimentAnswer& answer) {
  const bool ofSignal =
      IsOneOf(StepReadings, answer.Reading) || IsOneOf(TraceReadings, answer.Reading);
  const bool atFrequency = IsOneOf(ResponseReadings, answer.Reading);
  if (!ofSignal && !atFrequency && !IsOneOf(MarginReadings, answer.Reading)) return false;
  return answer.Signal.empty() != ofSignal && answer.AtHz.has_value() == atFrequency &&
         answer.Tolerance > 0.0;
}

// "Overshoot of vF = 17 +- 0.5 %", "Gain at 45 Hz = -3 +- 0.1 dB"
std::optional<ExperimentAnswer> ReadAnswer(const std::string& text) {
  const auto sides = Sides(text, " = ");
  const auto bounds = sides ? Sides(sides->second, " +- ") : std::nullopt;
  if (!bounds) return {};
  ExperimentAnswer answer;
  answer.Reading = sides->first;
  if (const auto of = Sides(answer.Reading, " of ")) {
    answer.Reading = of->first;
    answer.Signal = of->second;
  } else if (const auto at = Sides(answer.Reading, " at ")) {
    answer.Reading = at->first;
    answer.AtHz = ParseNumber(Split(at->second, " ").front());
  }
  const auto tolerance = Sides(bounds->second + " ", " ");
  const auto value = ParseNumber(bounds->first);
  const auto within = ParseNumber(tolerance->first);
  if (!value || !within) return {};
  answer.Value = *value;
  answer.Tolerance = *within;
  answer.Unit = tolerance->second.substr(0, tolerance->second.find_last_not_of(' ') + 1);
  return IsComplete(answer) ? std::optional(answer) : std::nullopt;
}

bool ReadKinds(const std::string& text, std::vector<InstrumentKind>& into) {
  for (const std::string& name : Split(text, ", ")) {
    const auto kind = std::find_if(Kinds.begin(), Kinds.end(),
                                   [&](const auto& entry) { return entry.first == name; });
    if (kind == Kinds.end()) return false;
    into.push_back(kind->second);
  }
  return true;
}

/// The settings in brackets; false when one is none, or a bracket is alone.
bool ReadTries(const std::string& text, std::vector<ExperimentSetting>& into, std::string& fault) {
  for (std::size_t at = text.find_first_of("[]"); at != std::string::npos;
       at = text.find_first_of("[]", at + 1)) {
    const std::size_t end = text.find(']', at);
    fault = text.substr(at, end == std::string::npos ? end : end + 1 - at);
    const auto setting = ReadSetting(fault.substr(1, fault.size() - 2));
    if (text[at] == ']' || end == std::string::npos || !setting) return false;
    into.push_back(*setting);
    at = end;
  }
  fault.clear();
  return true;
}

/// False when the line means nothing.
bool ReadLine(const std::string& keyword, const std::string& value, Experiment& into) {
  const std::array<std::pair<const char*, std::string*>, 4> texts{{{"Title", &into.Title},
                                                                   {"Model", &into.Model},
                                                                   {"Question", &into.Question},
                                                                   {"Cost", &into.Cost}}};
  for (const auto& [name, text] : texts) {
    if (keyword != name) continue;
    *text = value;
    return !value.empty();
  }
  if (keyword == "Number") {
    into.Number = ParseInteger(value).value_or(0);
    return into.Number > 0;
  }
  if (keyword == "Show") return ReadKinds(value, into.Shown);
  if (keyword == "Watch") {
    into.Watched = Split(value, ", ");
    return true;
  }
  if (keyword == "With") return ReadSettings(value, into.SetUp);
  if (keyword == "Step" || keyword == "While running") {
    ExperimentStep& step = into.Steps.emplace_back();
    step.WhileRunning = keyword != "Step";
    return ReadSettings(value, step.Settings);
  }
  if (keyword != "Answer" || into.Steps.empty()) return false;
  const auto answer = ReadAnswer(value);
  if (answer) into.Steps.back().Answers.push_back(*answer);
  return answer.has_value();
}

}  // namespace

std::string ExperimentSetting::Text() const {
  return (Of.empty() ? "" : Of + ": ") + Name + " = " + Value;
}

std::string ExperimentAnswer::Name() const {
  if (AtHz) return Reading + " at " + FormatShortest(*AtHz) + " Hz";
  return Signal.empty() ? Reading : Reading + " of " + Signal;
}

bool ExperimentAnswer::IsMetBy(double reading) const {
  // The bounds are decimal numbers, which doubles miss by a rounding.
  return std::abs(reading - Value) <= Tolerance * (1.0 + 1e-9);
}

bool Experiment::Shows(InstrumentKind kind) const {
  return std::find(Shown.begin(), Shown.end(), kind) != Shown.end();
}

std::vector<ExperimentSetting> Experiment::SettingsAt(std::size_t step) const {
  std::vector<ExperimentSetting> settings = SetUp;
  for (std::size_t k = 0; k <= step && k < Steps.size(); ++k) {
    for (const ExperimentSetting& setting : Steps[k].Settings) {
      std::erase_if(settings, [&](const auto& earlier) { return AreOfOne(earlier, setting); });
      settings.push_back(setting);
    }
  }
  return settings;
}

std::vector<ExperimentSetting> Experiment::FirstSetAfter(std::size_t step) const {
  const std::vector<ExperimentSetting> spoken = SettingsAt(step);
  std::vector<ExperimentSetting> first;
  for (std::size_t k = step + 1; k < Steps.size(); ++k) {
    std::copy_if(Steps[k].Settings.begin(), Steps[k].Settings.end(), std::back_inserter(first),
                 [&](const ExperimentSetting& setting) {
                   return std::none_of(spoken.begin(), spoken.end(), [&](const auto& earlier) {
                     return AreOfOne(earlier, setting);
                   });
                 });
  }
  return first;
}

std::optional<Experiment> ReadExperiment(std::string_view text, std::string& fault) {
  Experiment experiment;
  const std::size_t body = text.find("\nText:\n");
  if (body == std::string_view::npos) {
    fault = "There is no text";
    return {};
  }
  experiment.Text = text.substr(body + 7);
  if (!ReadTries(experiment.Text, experiment.Tries, fault)) return {};
  LineReader lines(text.substr(0, body));
  for (std::string line; lines.Next(line);) {
    const auto sides = Sides(line, ": ");
    if (sides && ReadLine(sides->first, sides->second, experiment)) continue;
    fault = line;
    return {};
  }
  if (!experiment.Title.empty() && !experiment.Model.empty() && experiment.Number > 0 &&
      !experiment.Question.empty() && !experiment.Shown.empty() && !experiment.Steps.empty()) {
    return experiment;
  }
  fault = "It has no title, model, number, question, instruments or steps";
  return {};
}

}  // namespace torvane
