// The records that both analysers have in a model file.

#include <array>

#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"

namespace torvane {
namespace {

constexpr std::size_t ValueEntries = 4;

struct ScaleRecord {
  const char* Keyword;
  double (FrequencyAnalyser::*Value)() const;
  void (FrequencyAnalyser::*Set)(double);
};
constexpr std::array ScaleRecords{
    ScaleRecord{"GainScale", &FrequencyAnalyser::GainScale, &FrequencyAnalyser::SetGainScale},
    ScaleRecord{"GainOffset", &FrequencyAnalyser::GainOffset, &FrequencyAnalyser::SetGainOffset},
    ScaleRecord{"PhaseScale", &FrequencyAnalyser::PhaseScale, &FrequencyAnalyser::SetPhaseScale},
    ScaleRecord{"PhaseOffset", &FrequencyAnalyser::PhaseOffset, &FrequencyAnalyser::SetPhaseOffset},
};

std::string WithoutBlanksAround(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

void FrequencyAnalyser::SaveRecords(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  if (output_) writer.Write("OutputChannel", {output_->Name()});
  if (input_) writer.Write("InputChannel", {input_->Name()});
  SaveSetup(writer);
  for (const ScaleRecord& scale : ScaleRecords) {
    writer.Write(scale.Keyword, {FormatRecordNumber((this->*scale.Value)())});
  }
  writer.Write("FindType", {findType_});
}

void FrequencyAnalyser::SaveFreqRange(RecordWriter& writer) const {
  writer.Write("FreqMin", {FormatRecordNumber(freqMin_)});
  writer.Write("FreqMax", {FormatRecordNumber(freqMax_)});
}

void FrequencyAnalyser::LoadRecord(const Record& record) {
  if (record.Keyword() == "Display") {
    LoadDisplayReporting(record, Placement, "File error:  wrong number entries in");
    return;
  }
  if (record.Fields.size() != ValueEntries) {
    Error("Wrong number of entries in" + record.Line);
    return;
  }
  if (!LoadChoice(record) && !LoadAxis(record) && !LoadSetup(record)) ReportUnknownRecord(record);
}

bool FrequencyAnalyser::LoadChoice(const Record& record) {
  const std::string& value = record.Fields[3];
  if (record.Keyword() == "OutputChannel") {
    SetOutput(value);
  } else if (record.Keyword() == "InputChannel") {
    SetInput(value);
  } else if (record.Keyword() == "FindType") {
    SetFindType(WithoutBlanksAround(value));
  } else {
    return false;
  }
  return true;
}

bool FrequencyAnalyser::LoadAxis(const Record& record) {
  const std::string& text = record.Fields[3];
  for (const ScaleRecord& scale : ScaleRecords) {
    if (record.Keyword() != scale.Keyword) continue;
    if (const auto value = ToNumber(text)) (this->*scale.Set)(*value);
    return true;
  }
  if (record.Keyword() == "FreqMin") {
    const auto hz = ToNumber(text);
    if (!hz) return true;
    if (*hz > 0.0) {
      fileFreqMin_ = *hz;
    } else {
      SetFreqMin(*hz);  // refuses it
    }
    return true;
  }
  if (record.Keyword() == "FreqMax") {
    if (const auto hz = ToNumber(text)) fileFreqMax_ = *hz;
    return true;
  }
  return false;
}

// The limits of the frequency axis push each other about when they are set one by one: those of a
// file are taken together.
void FrequencyAnalyser::FinishLoading(const std::function<void(int line)>& atLine) {
  if (fileFreqMin_ && fileFreqMax_) {
    SetFreqRange(*fileFreqMin_, *fileFreqMax_);
  } else if (fileFreqMin_) {
    SetFreqMin(*fileFreqMin_);
  } else if (fileFreqMax_) {
    SetFreqMax(*fileFreqMax_);
  }
  fileFreqMin_.reset();
  fileFreqMax_.reset();
  Instrument::FinishLoading(atLine);
}

}  // namespace torvane
