#pragma once

#include <memory>
#include <string>

#include "core/model.h"

namespace torvane {

// One function a model, each in the file of its model.
std::unique_ptr<ZelModel> MakePiPlus(const std::string& name);
std::unique_ptr<ZelModel> MakeAnalogPI(const std::string& name);
std::unique_ptr<ZelModel> MakeDigitalPI(const std::string& name);
std::unique_ptr<ZelModel> MakeAliasing(const std::string& name);
std::unique_ptr<ZelModel> MakeLimitCycles(const std::string& name);
std::unique_ptr<ZelModel> MakeDigitalPID(const std::string& name);
std::unique_ptr<ZelModel> MakeDisturbance(const std::string& name);
std::unique_ptr<ZelModel> MakeFeedForward(const std::string& name);
std::unique_ptr<ZelModel> MakeAnalogFilters(const std::string& name);
std::unique_ptr<ZelModel> MakeDigitalFilters(const std::string& name);
std::unique_ptr<ZelModel> MakeMotorFeedback(const std::string& name);
std::unique_ptr<ZelModel> MakeResonance(const std::string& name);
std::unique_ptr<ZelModel> MakePosLoopCascade(const std::string& name);
std::unique_ptr<ZelModel> MakePosLoopPID(const std::string& name);
std::unique_ptr<ZelModel> MakeSeminarPI(const std::string& name);

}  // namespace torvane
