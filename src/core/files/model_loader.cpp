// The loop that reads a model file, line by line.

#include <map>
#include <set>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/instrument.h"
#include "core/messages.h"
#include "core/text.h"

namespace torvane {
namespace {

void ReportEntryCount(const Record& record) {
  Error("File error:  wrong number entries in " + record.Line);
}

// False when the line names no constant of the model.
bool LoadConstant(ZelBenchTop& bench, const Record& record) {
  if (record.Fields.size() != 3) {
    ReportEntryCount(record);
    return false;
  }
  Constant* const constant = bench.FindConst(record.Fields[1]);
  if (!constant) {
    Error("File error: Constant not found in this line:\r" + record.Line);
    return false;
  }
  bench.History().Suspend();
  const std::string& value = record.Fields[2];
  const bool set = constant->SetFromText(
      value, "\rin line " + std::to_string(record.Number) + ":  " + record.Line);
  bench.History().Resume();
  if (set && !constant->IsList() && constant->Value() != ParseNumber(value)) {
    Note(constant->Name() + " is limited to " + constant->FileText());
  }
  return true;
}

class Loader {
 public:
  explicit Loader(ModelFileHost& host) : host_(host) {}

  LoadResult Load(std::string_view text) {
    stopAt_ = AskAboutModels(text);
    LineReader lines(text);
    result_.AtEnd = true;
    for (std::string line; result_.AtEnd && lines.Next(line);) {
      host_.AtLine(lines.Number());
      result_.AtEnd = LoadLine(ParseRecord(line, lines.Number()));
    }
    FinishInstruments();
    host_.AtLine(0);
    return result_;
  }

 private:
  /// Asks what there is to ask about the models that the text names; number of the line at which
  /// the user wants loading to stop, 0 for none.
  int AskAboutModels(std::string_view text) {
    if (!host_.CurrentModel()) return 0;
    std::string present = host_.CurrentModel()->Name();
    bool discards = false;
    LineReader lines(text);
    for (std::string line; lines.Next(line);) {
      if (!line.starts_with("Application,") && !line.starts_with("Model,")) continue;
      const Record record = ParseRecord(line, lines.Number());
      if (record.Fields.size() != 2) continue;
      const std::string& value = record.Fields[1];
      const bool isModel = record.Fields[0] == "Model";
      if (isModel ? !host_.InCatalogue(value) && value != present : value != ApplicationTitle) {
        return 0;  // loading ends here by itself
      }
      if (!isModel || value == present) continue;
      if (!WarningQuestion("This file is for another model.  Press OK to change models.")) {
        return record.Number;
      }
      if (!discards && !host_.MayDiscard()) return record.Number;
      discards = true;  // what follows are the file's own values
      present = value;
    }
    return 0;
  }

  /// False when loading is to stop.
  bool LoadLine(const Record& record) {
    const std::string& first = record.Field(0);
    if (first == "Application") return CheckApplication(record);
    if (first == "Model") return CheckModel(record);
    if (!host_.CurrentModel()) return true;
    if (first == "Constant") {
      if (LoadConstant(Bench(), record)) result_.Recognised = true;
      return true;
    }
    for (const InstrumentKind kind : AllInstrumentKinds) {
      if (first == RecordKeyword(kind)) LoadInstrument(kind, record);
    }
    return true;
  }

  bool CheckApplication(const Record& record) {
    if (record.Fields.size() != 2) {
      ReportEntryCount(record);
      return true;
    }
    if (record.Fields[1] != ApplicationTitle) {
      Error("This Torvane file is for another application.");
      return false;
    }
    result_.HasTitle = result_.Recognised = true;
    return true;
  }

  bool CheckModel(const Record& record) {
    if (record.Fields.size() != 2) {
      ReportEntryCount(record);
      return true;
    }
    const std::string& name = record.Fields[1];
    if (record.Number == stopAt_) return false;
    const ZelModel* const current = host_.CurrentModel();
    if (!current || current->Name() != name) {
      if (!host_.InCatalogue(name)) {
        Error("This Torvane file is for the model \"" + name +
              "\" and is not part of this version of Torvane.");
        return false;
      }
      if (current) FinishInstruments();
      refusedMeters_.clear();
      meters_.clear();
      if (!host_.ChangeModel(name)) return false;
    }
    result_.HasModel = result_.Recognised = true;
    return true;
  }

  void LoadInstrument(InstrumentKind kind, const Record& record) {
    if (record.Fields.size() < 2) {
      if (kind == InstrumentKind::Meter) Error("Wrong number of entries in" + record.Line);
      return;
    }
    Instrument* const instrument = kind == InstrumentKind::Meter
                                       ? MeterOf(record)
                                       : Bench().FindInstrument(kind, record.Fields[1]);
    if (!instrument) return;
    result_.Recognised = true;
    const WindowPlacement placement = instrument->Placement;
    instrument->BeginLoading();
    Bench().History().Suspend();
    instrument->LoadRecord(record);
    Bench().History().Resume();
    if (!host_.RestoresWindows()) instrument->Placement = placement;
  }

  // Each section begins with a "Display" record: another one of the same name is another meter.
  Instrument* MeterOf(const Record& record) {
    const std::string& name = record.Fields[1];
    Section& section = meters_[name];
    if (record.Keyword() == "Display" && ++section.Count > 1) section.Meter = nullptr;
    if (section.Meter) return section.Meter;
    const std::string own = section.Count > 1 ? NumberedName(name, section.Count) : name;
    section.Meter = Bench().FindInstrument(InstrumentKind::Meter, own);
    if (!section.Meter) section.Meter = AddMeter(own);
    return section.Meter;
  }

  // A meter that cannot be added is reported once and not once a record.
  Instrument* AddMeter(const std::string& name) {
    if (refusedMeters_.contains(name)) return nullptr;
    Instrument* const meter = host_.AddMeter(name);
    if (!meter) refusedMeters_.insert(name);
    return meter;
  }

  void FinishInstruments() {
    if (!host_.CurrentModel()) return;
    Bench().History().Suspend();
    for (const InstrumentKind kind : AllInstrumentKinds) {
      for (Instrument* instrument : Bench().Instruments(kind)) {
        instrument->FinishLoading([this](int line) { host_.AtLine(line); });
      }
    }
    Bench().History().Resume();
  }

  ZelBenchTop& Bench() { return host_.CurrentModel()->Bench(); }

  ModelFileHost& host_;
  LoadResult result_;
  int stopAt_ = 0;
  std::set<std::string> refusedMeters_;
  struct Section {
    Instrument* Meter = nullptr;
    int Count = 0;
  };
  std::map<std::string, Section> meters_;  ///< those of the file so far, by the name in it
};

}  // namespace

LoadResult LoadModelText(std::string_view text, ModelFileHost& host) {
  return Loader(host).Load(text);
}

}  // namespace torvane
