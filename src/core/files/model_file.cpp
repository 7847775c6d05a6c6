#include "core/files/model_file.h"

#include "core/constant.h"
#include "core/files/atomic_save.h"
#include "core/files/record.h"
#include "core/messages.h"

namespace torvane {

std::string ModelFileText(const ZelModel& model) {
  std::string text;
  text += std::string("Application,") + ApplicationTitle + "\r\n";
  text += "Model," + model.Name() + "\r\n";
  for (const Constant* constant : model.Bench().Constants()) {
    AppendRecord(text, {"Constant", constant->Name(), constant->FileText()});
  }
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (const Instrument* instrument : model.Bench().Instruments(kind)) {
      RecordWriter writer(text, RecordKeyword(kind), instrument->Name());
      instrument->SaveRecords(writer);
    }
  }
  return text;
}

bool SaveModelFile(ZelModel& model, const std::string& path) {
  if (!SaveAtomically(path, ModelFileText(model))) return false;
  model.Bench().SetConstantsChanged(false);
  return true;
}

bool LoadModelFile(const std::string& path, ModelFileHost& host) {
  std::string text;
  return ReadModelText(path, text) && LoadModelText(text, host);
}

bool MayDiscardConstants(const ZelBenchTop& bench, const std::string& toDo) {
  return !bench.ConstantsChanged() ||
         WarningQuestion(
             "Parameter values have changed since the last File Save.\r"
             "Those values will be lost.  Press OK to " +
             toDo + ".");
}

}  // namespace torvane
