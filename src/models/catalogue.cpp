#include "models/catalogue.h"

#include <algorithm>
#include <utility>

#include "core/messages.h"
#include "core/names.h"
#include "models/factories.h"

namespace torvane {

namespace {

std::unique_ptr<ZelModel> NotOffered() {
  FatalError("Fault in LoadModel");
  return nullptr;
}

}  // namespace

Catalogue::Catalogue()
    : entries_{
          {"2-1 PI+ Controller", "MPiPlus", MakePiPlus},
          {"3-1 PI Controller", "MAnalogPI", MakeAnalogPI},
          {"4-1 Digital PI Controller", "MDigitalPI", MakeDigitalPI},
          {"5-1 Aliasing", "MAliasing", MakeAliasing},
          {"5-2 Dither and Limit Cycles", "MLimitCycles", MakeLimitCycles},
          {"6-1 PID Controller", "MDigitalPID", MakeDigitalPID},
          {"7-1 Dist. Response of PI Controller", "MDisturbance", MakeDisturbance},
          {"8-1 Feed-forward", "MFeedForward", MakeFeedForward},
          {"9-1 Analog Filters", "MAnalogFilters", MakeAnalogFilters},
          {"9-2 Digital Filters", "MDigitalFilters", MakeDigitalFilters},
          {"13-1 Motor Feedback", "MMotorFeedback", MakeMotorFeedback},
          {"15-1 Resonance", "MResonance", MakeResonance},
          {"16-1 Cascade Position Loop", "MPosLoopCascade", MakePosLoopCascade},
          {"16-2 PID Position Loop", "MPosLoopPID", MakePosLoopPID},
          {"Seminar--Analog PI Controller", "MSeminarPI", MakeSeminarPI},
      } {}

std::vector<std::string> Catalogue::Names() const {
  std::vector<std::string> names;
  names.reserve(entries_.size());
  for (const CatalogueEntry& entry : entries_) names.push_back(entry.Name);
  return names;
}

const CatalogueEntry* Catalogue::Find(std::string_view name) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const CatalogueEntry& entry) { return entry.Name == name; });
  return found == entries_.end() ? nullptr : &*found;
}

std::vector<std::string> Catalogue::NamesFrom(const std::string& beginning) const {
  std::vector<std::string> names;
  for (const CatalogueEntry& entry : entries_) {
    const bool begins = Lower(entry.Name).starts_with(Lower(beginning));
    if (begins && !beginning.empty()) names.push_back(entry.Name);
  }
  return names;
}

bool Catalogue::Add(CatalogueEntry entry) {
  if (Find(entry.Name)) return false;
  entries_.push_back(std::move(entry));
  return true;
}

std::unique_ptr<ZelModel> Catalogue::Load(const std::string& name) const {
  const CatalogueEntry* const entry = Find(name);
  if (!entry) return NotOffered();
  try {
    std::unique_ptr<ZelModel> model = entry->Make(name);
    // What a constructor sets up is no change of the user's.
    if (model) model->Bench().History().Clear();
    return model;
  } catch (const std::exception&) {
    Error("Fault in " + entry->Source);
    return nullptr;
  }
}

const std::vector<std::string>& ModelNames() {
  static const std::vector<std::string> names = Catalogue().Names();
  return names;
}

int FindModel(const std::string& name) {
  const auto& names = ModelNames();
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

std::unique_ptr<ZelModel> LoadModel(int index) {
  const auto& names = ModelNames();
  if (index < 0 || index >= static_cast<int>(names.size())) return NotOffered();
  return Catalogue().Load(names[static_cast<std::size_t>(index)]);
}

}  // namespace torvane
