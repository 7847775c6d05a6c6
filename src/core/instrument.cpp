#include "core/instrument.h"

#include <utility>

namespace torvane {

Instrument::Instrument(InstrumentKind kind, std::string name)
    : kind_(kind), name_(std::move(name)) {}

void Instrument::Refresh() {
  if (view_) view_->Redraw();
}

void Instrument::ConstantChanged(const std::string& name) {
  if (view_) view_->ConstantChanged(name);
}

void Instrument::FinishLoading(const std::function<void(int line)>& /*atLine*/) {
  TellSettingsChanged();
}

void Instrument::TellSettingsChanged() {
  if (view_) view_->SettingsChanged();
}

}  // namespace torvane
