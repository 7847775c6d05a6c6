#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/files/model_file.h"
#include "instruments/meter/meter.h"
#include "models/catalogue.h"

namespace torvane::test {

/// Host of model files that builds each model once. A model that a file names is handed out as it
/// was when it was new, but for its time.
class PooledHost final : public ModelFileHost {
 public:
  ZelModel* CurrentModel() override { return current_; }
  bool InCatalogue(const std::string& model) const override { return FindModel(model) >= 0; }

  bool ChangeModel(const std::string& name) override {
    Clear();
    Pooled& pooled = models_[name];
    const bool isNew = !pooled.Model;
    if (isNew) {
      pooled.Model = LoadModel(FindModel(name));
      pooled.Text = ModelFileText(*pooled.Model);
    }
    current_ = pooled.Model.get();
    if (isNew) return true;
    current_->Reset();
    LoadModelText(pooled.Text, *this);
    return true;
  }

  Instrument* AddMeter(const std::string& name) override {
    if (meters_.size() >= ZelMeter::MaxMeters) return nullptr;
    meters_.push_back(std::make_unique<ZelMeter>(current_->Bench(), name));
    return meters_.back().get();
  }

  /// No model is current any more.
  void Clear() {
    meters_.clear();
    current_ = nullptr;
  }

 private:
  struct Pooled {
    std::unique_ptr<ZelModel> Model;
    std::string Text;  ///< of the model as it was new
  };

  std::map<std::string, Pooled> models_;
  ZelModel* current_ = nullptr;
  std::vector<std::unique_ptr<ZelMeter>> meters_;
};

}  // namespace torvane::test
