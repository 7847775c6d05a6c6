// A waveform generator's part of a model file.

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

}  // namespace

void ZelWave::SaveRecords(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  writer.Write("Waveform", {std::to_string(settings_.Index)});
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
  if (keyword == "Waveform") {
    if (!HasOneValue(record)) return;
    if (const auto index = ToInteger(record.Fields[3])) SetWaveform(*index);
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

}  // namespace torvane
