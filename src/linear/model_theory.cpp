#include "linear/model_theory.h"

#include <utility>

#include "core/constant.h"
#include "core/files/record.h"
#include "core/instrument.h"
#include "core/model.h"
#include "linear/linear_fault.h"
#include "linear/linearize.h"
#include "models/catalogue_host.h"

namespace torvane {

ModelTheory::ModelTheory(const ZelModel& model, Make make)
    : model_(model), make_(std::move(make)) {}

std::string ModelTheory::SetUp(const std::string& without) const {
  std::string text;
  for (const Constant* constant : model_.Bench().Constants()) {
    if (constant->Name() == without) continue;
    AppendRecord(text, "Constant", {constant->Name(), constant->FileText()});
  }
  constexpr auto Generator = InstrumentKind::WaveGenerator;
  for (const Instrument* generator : model_.Bench().Instruments(Generator)) {
    RecordWriter writer(text, RecordKeyword(Generator), generator->Name());
    generator->SaveRecords(writer);
  }
  return text;
}

std::unique_ptr<ZelModel> ModelTheory::MakeModel(const std::string& setUp) const {
  CatalogueHost host(make_());
  if (!host.Model) throw LinearFault("the model could not be built a second time");
  LoadModelText(setUp, host);
  return std::move(host.Model);
}

void ModelTheory::Update() {
  std::string setUp = SetUp();
  if (revision_ > 0 && setUp == setUp_) return;
  setUp_ = std::move(setUp);
  ++revision_;
  linear_.reset();
  fault_.clear();
  try {
    linear_ = Linearize(*MakeModel(setUp_));
  } catch (const LinearFault& fault) {
    fault_ = fault.what();
  }
}

LinearModel ModelTheory::With(const std::string& constant, double value) const {
  const auto model = MakeModel(SetUp());
  model->Bench().FindConst(constant)->Set(value);
  return Linearize(*model);
}

}  // namespace torvane
