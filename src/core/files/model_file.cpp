#include "core/files/model_file.h"

#include "core/constant.h"
#include "core/files/atomic_save.h"
#include "core/files/loop_record.h"
#include "core/files/record.h"
#include "core/instrument.h"

namespace torvane {

std::string ModelFileText(const ZelModel& model) {
  std::string text;
  text += std::string("Application,") + ApplicationTitle + "\r\n";
  text += LoopRecord(model);
  text += "Model," + model.Name() + "\r\n";
  for (const Constant* constant : model.Bench().Constants()) {
    AppendRecord(text, "Constant", {constant->Name(), constant->FileText()});
  }
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (const Instrument* instrument : model.Bench().Instruments(kind)) {
      RecordWriter writer(text, RecordKeyword(kind), instrument->Name());
      instrument->SaveRecords(writer);
    }
  }
  return text;
}

bool SaveModelFile(const ZelModel& model, const std::string& path) {
  return SaveAtomically(path, ModelFileText(model));
}

LoadResult LoadModelFile(const std::string& path, ModelFileHost& host) {
  std::string text;
  if (!ReadModelText(path, text)) return {};
  return LoadModelText(text, host);
}

}  // namespace torvane
