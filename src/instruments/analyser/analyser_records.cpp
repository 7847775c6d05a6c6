// The records that both analysers have in a model file.

#include <algorithm>
#include <array>

#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/number_settings.h"

namespace torvane {
namespace {

constexpr std::size_t ValueEntries = 4;
constexpr const char* AveragesKeyword = "Averages";  // in files where there is more than one

using Number = NumberSetting<FrequencyAnalyser>;
constexpr std::array Scales{
    Number{"GainScale", &FrequencyAnalyser::GainScale, &FrequencyAnalyser::SetGainScale},
    Number{"GainOffset", &FrequencyAnalyser::GainOffset, &FrequencyAnalyser::SetGainOffset},
    Number{"PhaseScale", &FrequencyAnalyser::PhaseScale, &FrequencyAnalyser::SetPhaseScale},
    Number{"PhaseOffset", &FrequencyAnalyser::PhaseOffset, &FrequencyAnalyser::SetPhaseOffset},
};

struct ViewSwitch {
  const char* Keyword;
  bool ResponseView::*On;
};
constexpr std::array ViewSwitches{
    ViewSwitch{"OpenLoop", &ResponseView::OpenLoop},
    ViewSwitch{"Unwrapped", &ResponseView::Unwrapped},
    ViewSwitch{"GroupDelay", &ResponseView::GroupDelay},
};
constexpr int LastPlot = static_cast<int>(ResponsePlot::Nichols);

std::string NumberedKeyword(const char* keyword, std::size_t number) {
  return keyword + std::to_string(number);
}

}  // namespace

void FrequencyAnalyser::SaveRecords(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  if (output_) writer.Write("OutputChannel", {output_->Name()});
  if (input_) writer.Write("InputChannel", {input_->Name()});
  SaveSetup(writer);
  SaveNumbers<FrequencyAnalyser>(writer, *this, Scales);
  writer.Write("FindType", {findType_});
  if (averages_ != 1) writer.Write(AveragesKeyword, {std::to_string(averages_)});
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

void FrequencyAnalyser::SaveState(RecordWriter& writer) const {
  SaveRecords(writer);
  if (averages_ == 1) writer.Write(AveragesKeyword, {std::to_string(averages_)});
  writer.Write("PhaseAdd", {FormatShortest(phaseAdd_)});
  SaveMore(writer);
}

void FrequencyAnalyser::LoadState(const Record& record) {
  if (record.Keyword() == "PhaseAdd") {
    phaseAdd_ = ParseNumber(record.Field(ValueEntries - 1)).value_or(0.0);
    return;
  }
  const auto number = ParseInteger(record.Field(ValueEntries - 1));
  if (number && LoadMore(record.Keyword(), *number)) return;
  // A channel that is chosen by hand has no phase added; here the record after it says.
  const double phaseAdd = phaseAdd_;
  LoadRecord(record);
  phaseAdd_ = phaseAdd;
}

void FrequencyAnalyser::SaveMore(RecordWriter& writer) const {
  const auto write = [&](const std::string& keyword, int value) {
    writer.Write(keyword, {std::to_string(value)});
  };
  write("Cursors", static_cast<int>(cursors_));
  for (std::size_t i = 0; i < cursorPixel_.size(); ++i) {
    write(NumberedKeyword("Cursor", i), cursorPixel_[i]);
  }
  write("CursorTrace", cursorSlot_);
  write("SplitScreen", splitScreen_);
  write("Plot", static_cast<int>(responseView_.Plot));
  for (const ViewSwitch& view : ViewSwitches) write(view.Keyword, responseView_.*view.On);
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    write(NumberedKeyword("Shown", i), slots_[i].Shown);
  }
}

bool FrequencyAnalyser::LoadMore(const std::string& keyword, int value) {
  for (int i = 0; i < static_cast<int>(cursorPixel_.size()); ++i) {
    if (keyword == NumberedKeyword("Cursor", static_cast<std::size_t>(i))) {
      SetCursorPixel(i, value);
      return true;
    }
  }
  for (int i = 0; i < SlotCount; ++i) {
    if (keyword == NumberedKeyword("Shown", static_cast<std::size_t>(i))) {
      SetShown(i, value != 0);
      return true;
    }
  }
  if (LoadView(keyword, value)) return true;
  if (keyword == "Cursors") {
    SetCursors(static_cast<CursorMode>(value));
  } else if (keyword == "CursorTrace") {
    SetCursorSlot(value);
  } else if (keyword == "SplitScreen") {
    SetSplitScreen(value != 0);
  } else {
    return false;
  }
  return true;
}

bool FrequencyAnalyser::LoadView(const std::string& keyword, int value) {
  ResponseView view = responseView_;
  if (keyword == "Plot") {
    view.Plot = static_cast<ResponsePlot>(std::clamp(value, 0, LastPlot));
    SetView(view);
    return true;
  }
  for (const ViewSwitch& one : ViewSwitches) {
    if (keyword != one.Keyword) continue;
    view.*one.On = value != 0;
    SetView(view);
    return true;
  }
  return false;
}

bool FrequencyAnalyser::LoadChoice(const Record& record) {
  const std::string& value = record.Fields[3];
  if (record.Keyword() == "OutputChannel") {
    SetOutput(value);
  } else if (record.Keyword() == "InputChannel") {
    SetInput(value);
  } else if (record.Keyword() == "FindType") {
    SetFindType(value);
  } else if (record.Keyword() == AveragesKeyword) {
    if (const auto count = ToInteger(value)) SetAverages(*count);
  } else {
    return false;
  }
  return true;
}

bool FrequencyAnalyser::LoadAxis(const Record& record) {
  const std::string& text = record.Fields[3];
  if (LoadNumber<FrequencyAnalyser>(record, *this, Scales)) return true;
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
    // Where both were set before, the lower one may stand closer than it could be moved alone.
    const double high = freqMax_;
    SetFreqRange(*fileFreqMin_, high);
    if (freqMax_ != high) {
      freqMax_ = high;
      SetFreqMin(*fileFreqMin_);
    }
  } else if (fileFreqMax_) {
    SetFreqMax(*fileFreqMax_);
  }
  fileFreqMin_.reset();
  fileFreqMax_.reset();
  Instrument::FinishLoading(atLine);
}

}  // namespace torvane
