#include "models/model_file_host.h"

#include "instruments/meter/meter.h"
#include "models/catalogue.h"

namespace torvane {

bool CatalogueHost::InCatalogue(const std::string& model) const {
  return FindModel(model) >= 0;
}

bool CatalogueHost::ChangeModel(const std::string& name) {
  Model.reset();  // one model at a time: the old one makes room first
  Model = LoadModel(FindModel(name));
  return Model != nullptr;
}

Instrument* CatalogueHost::AddMeter(const std::string& name) {
  return torvane::AddMeter(*Model, name);
}

}  // namespace torvane
