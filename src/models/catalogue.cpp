#include "models/catalogue.h"

#include <algorithm>
#include <array>

#include "core/messages.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct Entry {
  const char* Name;
  const char* ClassName;
  std::unique_ptr<ZelModel> (*Make)(const std::string& name);
};

constexpr std::array Entries = {
    Entry{"2-1 PI+ Controller", "MPiPlus", MakePiPlus},
    Entry{"3-1 PI Controller", "MAnalogPI", MakeAnalogPI},
    Entry{"4-1 Digital PI Controller", "MDigitalPI", MakeDigitalPI},
    Entry{"5-1 Aliasing", "MAliasing", MakeAliasing},
    Entry{"5-2 Dither and Limit Cycles", "MLimitCycles", MakeLimitCycles},
    Entry{"6-1 PID Controller", "MDigitalPID", MakeDigitalPID},
    Entry{"7-1 Dist. Response of PI Controller", "MDisturbance", MakeDisturbance},
    Entry{"8-1 Feed-forward", "MFeedForward", MakeFeedForward},
    Entry{"9-1 Analog Filters", "MAnalogFilters", MakeAnalogFilters},
    Entry{"9-2 Digital Filters", "MDigitalFilters", MakeDigitalFilters},
    Entry{"13-1 Motor Feedback", "MMotorFeedback", MakeMotorFeedback},
    Entry{"15-1 Resonance", "MResonance", MakeResonance},
    Entry{"16-1 Cascade Position Loop", "MPosLoopCascade", MakePosLoopCascade},
    Entry{"16-2 PID Position Loop", "MPosLoopPID", MakePosLoopPID},
    Entry{"Seminar--Analog PI Controller", "MSeminarPI", MakeSeminarPI},
};

}  // namespace

const std::vector<std::string>& ModelNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> list;
    list.reserve(Entries.size());
    for (const Entry& entry : Entries) list.emplace_back(entry.Name);
    return list;
  }();
  return names;
}

int FindModel(const std::string& name) {
  const auto& names = ModelNames();
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

std::unique_ptr<ZelModel> LoadModel(int index) {
  if (index < 0 || index >= static_cast<int>(Entries.size())) {
    FatalError("Fault in LoadModel");
    return nullptr;
  }
  const Entry& entry = Entries[static_cast<std::size_t>(index)];
  try {
    std::unique_ptr<ZelModel> model = entry.Make(entry.Name);
    // What a constructor sets up is no change of the user's.
    model->Bench().History().Clear();
    return model;
  } catch (const std::exception&) {
    Error(std::string("Fault in ") + entry.ClassName);
    return nullptr;
  }
}

}  // namespace torvane
