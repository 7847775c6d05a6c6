#pragma once

#include <functional>
#include <memory>

#include "core/model.h"

namespace torvane::cli {

/// Builds a model with its settings.
using MakeModel = std::function<std::unique_ptr<ZelModel>()>;

/// A model as a process builds it that has run nothing else, whatever ran in this one: its class
/// remembers nothing.
inline std::unique_ptr<ZelModel> MakeFirst(const MakeModel& make) {
  std::unique_ptr<ZelModel> model = make();
  model->DropClassMemory();
  return model;
}

}  // namespace torvane::cli
