#include "models/catalogue_host.h"

#include <utility>

#include "instruments/meter/meter.h"

namespace torvane {

bool CatalogueHost::InCatalogue(const std::string& model) const {
  return Models.Find(model) != nullptr;
}

bool CatalogueHost::ChangeModel(const std::string& name) {
  std::unique_ptr<ZelModel> model = Models.Load(name);
  if (!model) return false;
  Replace(std::move(model));
  return true;
}

void CatalogueHost::Replace(std::unique_ptr<ZelModel> model) {
  Model = std::move(model);
}

Instrument* CatalogueHost::AddMeter(const std::string& name) {
  return torvane::AddMeter(*Model, name);
}

}  // namespace torvane
