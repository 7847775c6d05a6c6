// A meter's part of a model file.

#include <array>

#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/meter/meter.h"
#include "instruments/number_settings.h"

namespace torvane {
namespace {

constexpr std::size_t MeterEntries = 4;

using MeterNumber = NumberSetting<ZelMeter>;
constexpr std::array Numbers{
    MeterNumber{"ACHpf", &ZelMeter::AcHpf, &ZelMeter::SetAcHpf},
    MeterNumber{"HarmonicFreq", &ZelMeter::HarmonicFreq, &ZelMeter::SetHarmonicFreq},
    MeterNumber{"Lpf", &ZelMeter::Lpf, &ZelMeter::SetLpf},
    MeterNumber{"ExcitationMag", &ZelMeter::ExcitationMag, &ZelMeter::SetExcitationMag},
    MeterNumber{"ExcitationOff", &ZelMeter::ExcitationOff, &ZelMeter::SetExcitationOff},
    MeterNumber{"ExcitationMult", &ZelMeter::ExcitationMult, &ZelMeter::SetExcitationMult},
    MeterNumber{"TSample", &ZelMeter::TSample, &ZelMeter::SetTSample},
    MeterNumber{"TWindow", &ZelMeter::TWindow, &ZelMeter::SetTWindow},
};

void ReportBadData(const Record& record) {
  Error("Bad data in" + record.Line);
}

void SaveVariable(RecordWriter& writer, const char* keyword, const Variable* variable) {
  if (variable) writer.Write(keyword, {variable->Name()});
}

}  // namespace

void ZelMeter::SaveRecords(RecordWriter& writer) const {
  const auto kind = [&](MeterKind meant) {
    writer.Write(NamesOf(meant).Keyword, {FlagText(kind_ == meant)});
  };
  // The numbers stand here and there among the switches, in the order of the table.
  std::span<const MeterNumber> numbers = Numbers;
  const auto number = [&](std::size_t count = 1) {
    SaveNumbers(writer, *this, numbers.first(count), FormatShortest);
    numbers = numbers.subspan(count);
  };
  SaveDisplay(writer, Placement);
  writer.Write("ShowSetup", {FlagText(showSetup_)});
  SaveVariable(writer, "VariableVar", Measured());
  writer.Write("DC", {FlagText(!ac_)});
  writer.Write("AC", {FlagText(ac_)});
  number();
  kind(MeterKind::Rms);
  kind(MeterKind::Average);
  kind(MeterKind::Harmonic);
  number();
  writer.Write("HarmonicXfer", {FlagText(harmonicXfer_)});
  SaveVariable(writer, "HarmonicXferVar", HarmonicXferVar());
  kind(MeterKind::Correlation);
  SaveVariable(writer, "CorrVar", CorrVar());
  number();
  writer.Write("UseExcite", {FlagText(useExcitation_)});
  number(4);  // the excitation's and the sample time
  writer.Write("UseDB", {FlagText(useDb_)});
  number();
}

void ZelMeter::LoadRecord(const Record& record) {
  if (record.Keyword() == "Display") {
    LoadMeterDisplay(record);
  } else if (record.Fields.size() != MeterEntries) {
    Error("Wrong number of entries in" + record.Line);
  } else if (!LoadSwitch(record) && !LoadVariable(record) && !LoadNumber(record)) {
    ReportBadData(record);
  }
}

void ZelMeter::LoadMeterDisplay(const Record& record) {
  switch (LoadDisplay(record, Placement)) {
    case DisplayFault::EntryCount:
      Error("Wrong number of entries in" + record.Line);
      break;
    case DisplayFault::WindowState:
      ReportBadData(record);
      break;
    case DisplayFault::None:
      break;
  }
}

bool ZelMeter::LoadSwitch(const Record& record) {
  const std::string& keyword = record.Keyword();
  const bool on = IsOn(record.Fields[3]);
  for (std::size_t kind = 0; kind < MeterKinds.size(); ++kind) {
    if (keyword != MeterKinds[kind].Keyword) continue;
    if (on) SetKind(static_cast<MeterKind>(kind));
    return true;
  }
  if (keyword == "DC" || keyword == "AC") {
    if (on) SetAcCoupled(keyword == "AC");
  } else if (keyword == "ShowSetup") {
    SetShowSetup(on);
  } else if (keyword == "HarmonicXfer") {
    SetHarmonicXfer(on);
  } else if (keyword == "UseExcite") {
    SetUseExcitation(on);
  } else if (keyword == "UseDB") {
    SetUseDb(on);
  } else {
    return false;
  }
  return true;
}

bool ZelMeter::LoadVariable(const Record& record) {
  const std::string& name = record.Fields[3];
  const auto message = [&](const char* what) {
    return std::string("Error in Meter:  ") + what + " " + name + " not found.";
  };
  if (record.Keyword() == "VariableVar") {
    Choose(measured_, name, "", message("Variable"));
  } else if (record.Keyword() == "CorrVar") {
    Choose(correlated_, name, "", message("Corr Variable"));
  } else if (record.Keyword() == "HarmonicXferVar") {
    Choose(transfer_, name, "", message("Harm. Xfer Variable"));
  } else {
    return false;
  }
  return true;
}

// A number that cannot be read is bad data; one that is out of range has its setter's own report.
bool ZelMeter::LoadNumber(const Record& record) {
  const auto value = ParseNumber(record.Fields[3]);
  if (!value) return false;
  for (const MeterNumber& setting : Numbers) {
    if (record.Keyword() != setting.Keyword) continue;
    (this->*setting.Set)(*value);
    return true;
  }
  return false;
}

}  // namespace torvane
