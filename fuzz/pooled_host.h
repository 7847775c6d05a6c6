#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/files/model_file.h"
#include "instruments/meter/meter.h"
#include "models/catalogue.h"

namespace torvane::test {

/// Host of model files that builds each model once. A model that a file names is handed out as it
/// was when it was new, but for its time; or, for files that set everything, as it was left.
class PooledHost final : public ModelFileHost {
 public:
  enum class HandOut { New, AsLeft };

  explicit PooledHost(HandOut handOut = HandOut::New) : handOut_(handOut) {}

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
    if (isNew || handOut_ == HandOut::AsLeft) return true;
    current_->Reset();
    const std::optional<std::string> left = std::exchange(pooled.Left, std::nullopt);
    LoadModelText(ChangedLines(pooled.Text, left ? *left : ModelFileText(*current_)), *this);
    return true;
  }

  Instrument* AddMeter(const std::string& name) override {
    if (meters_.size() >= ZelMeter::MaxMeters) return nullptr;
    meters_.push_back(std::make_unique<ZelMeter>(current_->Bench(), name));
    return meters_.back().get();
  }

  /// The current model's present text, from a caller that has it: making it again takes a while.
  void SetText(const std::string& text) { models_[current_->Name()].Left = text; }

  /// No model is current any more.
  void Clear() {
    meters_.clear();
    current_ = nullptr;
  }

 private:
  struct Pooled {
    std::unique_ptr<ZelModel> Model;
    std::string Text;                 ///< of the model as it was new
    std::optional<std::string> Left;  ///< as it is now, where that is known
  };

  /// Of the model's text as it was new, what does not stand in its present one.
  static std::string ChangedLines(std::string_view text, std::string_view now) {
    std::unordered_set<std::string_view> present;
    while (!now.empty()) present.insert(TakeLine(now));
    std::string changed;
    while (!text.empty()) {
      const std::string_view line = TakeLine(text);
      if (!present.contains(line)) changed += line;
    }
    return changed;
  }

  /// The first line with its end, which leaves TEXT.
  static std::string_view TakeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
    text.remove_prefix(line.size());
    return line;
  }

  HandOut handOut_;
  std::map<std::string, Pooled> models_;
  ZelModel* current_ = nullptr;
  std::vector<std::unique_ptr<ZelMeter>> meters_;
};

}  // namespace torvane::test
