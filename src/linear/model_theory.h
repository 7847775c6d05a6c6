#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "linear/linear_model.h"

namespace torvane {

class ZelModel;

/// The linear model of one that somebody else runs: found on models of its own that have the same
/// constants and generators. The one that runs is only read.
class ModelTheory {
 public:
  using Make = std::function<std::unique_ptr<ZelModel>()>;

  /// The model must outlive this; `make` builds another of its kind.
  ModelTheory(const ZelModel& model, Make make);

  /// All that the linear model depends on, as records of a model file; of the constants all but
  /// one, where a name is given.
  std::string SetUp(const std::string& without = {}) const;

  /// Linearises the model as it is set up now, unless it is the same as before.
  void Update();
  /// Counts the set-ups that were linearised.
  int Revision() const { return revision_; }

  /// nullptr where there is none, and before the first Update.
  const LinearModel* Linear() const { return linear_ ? &*linear_ : nullptr; }
  /// Why there is none.
  const std::string& Fault() const { return fault_; }

  /// The linear model as set up now, with a constant at another value; a LinearFault where there is
  /// none.
  LinearModel With(const std::string& constant, double value) const;

 private:
  std::unique_ptr<ZelModel> MakeModel(const std::string& setUp) const;

  const ZelModel& model_;
  Make make_;
  std::string setUp_;
  int revision_ = 0;
  std::optional<LinearModel> linear_;
  std::string fault_;
};

}  // namespace torvane
