#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/model.h"

namespace torvane {

/// Names of the models that the program offers; the position is the model's index.
const std::vector<std::string>& ModelNames();

/// Index of the name, or -1.
int FindModel(const std::string& name);

/// Builds the model of that index. Any other index is a fatal error and gives no model.
std::unique_ptr<ZelModel> LoadModel(int index);

}  // namespace torvane
