// A waveform generator's part of a model file.

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/generator/wave.h"

namespace torvane {
namespace {

// A keyword's record has one value.
bool HasOneValue(const Record& record) {
  if (record.Fields.size() == 4) return true;
  Error("Wrong number of entries in " + record.Line);
  return false;
}

constexpr const char* WaveformKeyword = "Waveform";
constexpr const char* PlayedState = "Played";

}  // namespace

void ZelWave::SaveRecords(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  writer.Write(WaveformKeyword, {std::to_string(settings_.Index)});
  if (played_) {
    writer.Write("File", {played_->Name(), FormatShortest(unplayed_.Amplitude),
                          FormatShortest(unplayed_.FreqHz), FormatShortest(unplayed_.Offset),
                          FormatShortest(unplayed_.PhaseDeg)});
    for (const std::string& text : played_->RecordTexts()) writer.Write("Points", {text});
  }
  SaveNumbers(writer);
}

// A table, which never changes, is not written anew for each step.
void ZelWave::SaveState(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  writer.Write(WaveformKeyword, {std::to_string(settings_.Index)});
  writer.Write(PlayedState, {std::to_string(PlayedPlace()), FormatShortest(unplayed_.Amplitude),
                             FormatShortest(unplayed_.FreqHz), FormatShortest(unplayed_.Offset),
                             FormatShortest(unplayed_.PhaseDeg)});
  SaveNumbers(writer);
}

void ZelWave::LoadState(const Record& record) {
  const bool waveform = record.Keyword() == WaveformKeyword;
  if (!waveform && record.Keyword() != PlayedState) {
    LoadRecord(record);
    return;
  }
  const auto number = ToInteger(record.Field(3));
  if (!number) return;
  const auto table = static_cast<std::size_t>(*number);
  // Neither brings back what the generator had before a table: other records do.
  Change(
      [&] {
        if (waveform) settings_.Index = LimitedIndex(*number);
        if (!waveform) LoadUnplayed(record);
        Take(waveform ? played_ : table < tables_.size() ? tables_[table] : nullptr);
      },
      [&] { return WaveformCaption(); });
}

void ZelWave::SaveNumbers(RecordWriter& writer) const {
  for (const WaveNumber& number : Numbers()) {
    writer.Write(number.Name, {FormatShortest(settings_.*number.Value)});
  }
}

void ZelWave::LoadRecord(const Record& record) {
  const std::string& keyword = record.Keyword();
  if (keyword == "Display") {
    LoadDisplayReporting(record, Placement, "File error:  wrong number entries in ");
    return;
  }
  if (keyword == WaveformKeyword) {
    if (!HasOneValue(record)) return;
    if (const auto index = ToInteger(record.Fields[3])) SetWaveform(*index);
    return;
  }
  if (keyword == "File" || keyword == "Points") {
    LoadPoints(record);
    return;
  }
  for (const WaveNumber& number : Numbers()) {
    if (keyword != number.Name) continue;
    if (!HasOneValue(record)) return;
    if (const auto value = ToNumber(record.Fields[3])) (this->*number.Set)(*value);
    return;
  }
  ReportUnknownRecord(record);
}

void ZelWave::LoadPoints(const Record& record) {
  if (record.Keyword() == "File") {
    loading_ = Loading{record.Field(3), {}, record.Number};
    unplayed_ = settings_;
    LoadUnplayed(record);
    return;
  }
  if (!loading_ || !HasOneValue(record)) return;
  std::istringstream words(record.Fields[3]);
  for (std::string time, value; words >> time >> value;) {
    const auto at = ToNumber(time);
    const auto is = at ? ToNumber(value) : std::nullopt;
    if (!is) return;
    loading_->Points.push_back({*at, *is});
  }
}

// What the generator had before the table stands behind its name or number.
void ZelWave::LoadUnplayed(const Record& record) {
  std::size_t field = 4;
  for (double WaveSettings::*const number : {&WaveSettings::Amplitude, &WaveSettings::FreqHz,
                                             &WaveSettings::Offset, &WaveSettings::PhaseDeg}) {
    if (const auto value = ParseNumber(record.Field(field++))) unplayed_.*number = *value;
  }
  unplayed_.FreqHz = std::abs(unplayed_.FreqHz);
}

void ZelWave::FinishLoading(const std::function<void(int line)>& atLine) {
  if (const auto loaded = std::exchange(loading_, {})) {
    const std::string fault = WaveTable::Fault(loaded->Points);
    if (fault.empty()) {
      Change([&] { Take(std::make_shared<const WaveTable>(loaded->Name, loaded->Points)); },
             [&] { return WaveformCaption(); });
    } else {
      // Numbers for a table would make something else of a waveform.
      EndPlaying();
      atLine(loaded->Line);
      Error(Name() + " does not play \"" + loaded->Name + "\": " + fault);
    }
  }
  Instrument::FinishLoading(atLine);
}

}  // namespace torvane
