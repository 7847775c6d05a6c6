// The loop that reads a model file, line by line.

#include <set>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/messages.h"

namespace torvane {
namespace {

void ReportEntryCount(const Record& record) {
  Error("File error:  wrong number entries in " + record.Line);
}

void LoadConstant(ZelBenchTop& bench, const Record& record) {
  if (record.Fields.size() != 3) {
    ReportEntryCount(record);
    return;
  }
  Constant* const constant = bench.FindConst(record.Fields[1]);
  if (!constant) {
    Error("File error: Constant not found in this line:\r" + record.Line);
    return;
  }
  bench.History().Suspend();
  constant->SetFromText(record.Fields[2]);
  bench.History().Resume();
  bench.TellConstantChanged(constant->Name());
}

class Loader {
 public:
  explicit Loader(ModelFileHost& host) : host_(host) {}

  bool Load(std::string_view text) {
    LineReader lines(text);
    bool goOn = true;
    for (std::string line; goOn && lines.Next(line);) {
      host_.AtLine(lines.Number());
      goOn = LoadLine(ParseRecord(line, lines.Number()));
    }
    FinishInstruments();
    host_.AtLine(0);
    if (goOn && host_.CurrentModel()) host_.CurrentModel()->Bench().SetConstantsChanged(false);
    return goOn;
  }

 private:
  /// False when loading is to stop.
  bool LoadLine(const Record& record) {
    const std::string& first = record.Field(0);
    if (first == "Application") return CheckApplication(record);
    if (first == "Model") return CheckModel(record);
    if (!host_.CurrentModel()) return true;
    if (first == "Constant") {
      LoadConstant(Bench(), record);
      return true;
    }
    for (const InstrumentKind kind : AllInstrumentKinds) {
      if (first == RecordKeyword(kind)) LoadInstrument(kind, record);
    }
    return true;
  }

  static bool CheckApplication(const Record& record) {
    if (record.Fields.size() != 2) {
      ReportEntryCount(record);
      return true;
    }
    if (record.Fields[1] == ApplicationTitle) return true;
    Error("This Torvane file is for another application.");
    return false;
  }

  bool CheckModel(const Record& record) {
    if (record.Fields.size() != 2) {
      ReportEntryCount(record);
      return true;
    }
    const std::string& name = record.Fields[1];
    ZelModel* const current = host_.CurrentModel();
    if (current && current->Name() == name) return true;
    if (!host_.InCatalogue(name)) {
      Error("This Torvane file is for the model \"" + name +
            "\" and is not part of this version of Torvane.");
      return false;
    }
    if (current) {
      if (!WarningQuestion("This file is for another model.  Press OK to change models.")) {
        return false;
      }
      if (!MayDiscardConstants(current->Bench())) return false;
      FinishInstruments();
    }
    refusedMeters_.clear();
    return host_.ChangeModel(name);
  }

  void LoadInstrument(InstrumentKind kind, const Record& record) {
    if (record.Fields.size() < 2) {
      if (kind == InstrumentKind::Meter) Error("Wrong number of entries in" + record.Line);
      return;
    }
    Instrument* instrument = Bench().FindInstrument(kind, record.Fields[1]);
    if (!instrument && kind == InstrumentKind::Meter) instrument = AddMeter(record.Fields[1]);
    if (!instrument) return;
    const WindowPlacement placement = instrument->Placement;
    instrument->BeginLoading();
    Bench().History().Suspend();
    instrument->LoadRecord(record);
    Bench().History().Resume();
    if (!host_.RestoresWindows()) instrument->Placement = placement;
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
  std::set<std::string> refusedMeters_;
};

}  // namespace

bool LoadModelText(std::string_view text, ModelFileHost& host) {
  return Loader(host).Load(text);
}

}  // namespace torvane
