// The records that both analysers have in a model file.

#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"

namespace torvane {
namespace {

constexpr std::size_t AnalyserEntries = 4;
constexpr const char* AveragesKeyword = "Averages";  // in files where there is more than one

std::string ShownKeyword(std::size_t slot) {
  return "Shown" + std::to_string(slot);
}

}  // namespace

void FrequencyAnalyser::SaveRecords(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  if (output_) writer.Write("OutputChannel", {output_->Name()});
  if (input_) writer.Write("InputChannel", {input_->Name()});
  SaveSetup(writer);
  SaveScales(writer);
  if (averages_ != 1) writer.Write(AveragesKeyword, {std::to_string(averages_)});
}

void FrequencyAnalyser::LoadRecord(const Record& record) {
  if (record.Keyword() == "Display") {
    LoadDisplayReporting(record, Placement, "File error:  wrong number entries in");
    return;
  }
  if (record.Fields.size() != AnalyserEntries) {
    Error("Wrong number of entries in" + record.Line);
    return;
  }
  if (!LoadChoice(record) && !LoadAxis(record) && !LoadSetup(record)) ReportUnknownRecord(record);
}

void FrequencyAnalyser::SaveState(RecordWriter& writer) const {
  SaveRecords(writer);
  if (averages_ == 1) writer.Write(AveragesKeyword, {std::to_string(averages_)});
  writer.Write("PhaseAdd", {FormatShortest(phaseAdd_)});
  SaveMore(writer);
}

void FrequencyAnalyser::LoadState(const Record& record) {
  if (record.Keyword() == "PhaseAdd") {
    phaseAdd_ = ParseNumber(record.Field(AnalyserEntries - 1)).value_or(0.0);
    DropTheory();
    MakeResponses();
    return;
  }
  if (LoadWindow(record)) return;
  const auto number = ParseInteger(record.Field(AnalyserEntries - 1));
  if (number && LoadMore(record.Keyword(), *number)) return;
  // A channel that is chosen by hand has no phase added; here the record after it says.
  const double phaseAdd = phaseAdd_;
  LoadRecord(record);
  phaseAdd_ = phaseAdd;
}

void FrequencyAnalyser::SaveMore(RecordWriter& writer) const {
  SaveLook(writer);
  for (std::size_t i = 0; i < SlotCount; ++i) {
    writer.Write(ShownKeyword(i), {std::to_string(slots_[i].Shown)});
  }
}

bool FrequencyAnalyser::LoadMore(const std::string& keyword, int value) {
  for (int i = 0; i < SlotCount; ++i) {
    if (keyword != ShownKeyword(static_cast<std::size_t>(i))) continue;
    SetShown(i, value != 0);
    return true;
  }
  return LoadLook(keyword, value);
}

bool FrequencyAnalyser::LoadChoice(const Record& record) {
  const std::string& value = record.Fields[3];
  if (record.Keyword() == "OutputChannel") {
    SetOutput(value);
  } else if (record.Keyword() == "InputChannel") {
    SetInput(value);
  } else if (record.Keyword() == AveragesKeyword) {
    if (const auto count = ToInteger(value)) SetAverages(*count);
  } else {
    return false;
  }
  return true;
}

void FrequencyAnalyser::FinishLoading(const std::function<void(int line)>& atLine) {
  FinishLoadingAxis();
  Instrument::FinishLoading(atLine);
}

}  // namespace torvane
