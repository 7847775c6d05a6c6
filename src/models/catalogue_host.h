#pragma once

#include <memory>
#include <string>

#include "core/files/model_file.h"
#include "models/catalogue.h"

namespace torvane {

/// Host of model files: holds one model of the catalogue and replaces it when a file names another.
class CatalogueHost : public ModelFileHost {
 public:
  explicit CatalogueHost(std::unique_ptr<ZelModel> model = nullptr) : Model(std::move(model)) {}

  ZelModel* CurrentModel() override { return Model.get(); }
  bool InCatalogue(const std::string& model) const override;
  bool ChangeModel(const std::string& name) override;
  Instrument* AddMeter(const std::string& name) override;

  /// A new model has been built and takes the present one's place.
  virtual void Replace(std::unique_ptr<ZelModel> model);

  Catalogue Models;
  std::unique_ptr<ZelModel> Model;
};

}  // namespace torvane
