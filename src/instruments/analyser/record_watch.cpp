#include "instruments/analyser/record_watch.h"

#include <algorithm>

#include "core/bench.h"
#include "core/constant.h"
#include "core/files/record.h"
#include "core/instrument.h"

namespace torvane {

namespace {

void AddOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

}  // namespace

// Where its window stands is no part of the model.
std::string RecordWatch::GeneratorText(const Instrument& generator) const {
  std::string display;
  RecordWriter window(display, RecordKeyword(generator.Kind()), generator.Name());
  SaveDisplay(window, generator.Placement);
  std::string text;
  RecordWriter writer(text, RecordKeyword(generator.Kind()), generator.Name());
  generator.SaveRecords(writer);
  if (const auto at = text.find(display); at != std::string::npos) text.erase(at, display.size());
  return text;
}

void RecordWatch::Begin() {
  constants_.clear();
  generators_.clear();
  changed_.clear();
  otherExcites_ = meterExcites_ = false;
  for (const Constant* constant : bench_.Constants()) {
    constants_.emplace_back(constant, constant->Value());
  }
  for (const Instrument* generator : bench_.Instruments(InstrumentKind::WaveGenerator)) {
    generators_.emplace_back(generator, GeneratorText(*generator));
  }
}

void RecordWatch::SeeModel() {
  for (const auto& [constant, before] : constants_) {
    if (constant->Value() != before) AddOnce(changed_, constant->Name());
  }
  for (const auto& [generator, before] : generators_) {
    if (GeneratorText(*generator) != before) AddOnce(changed_, generator->Name());
  }
}

void RecordWatch::SeeExcitation(double now) {
  if (own_.Kind() == InstrumentKind::SweptSine) {
    otherExcites_ = otherExcites_ ||
                    std::ranges::any_of(bench_.Instruments(InstrumentKind::FftAnalyser),
                                        [](const Instrument* fft) { return fft->Measuring(); });
  }
  if (!bench_.MetersExcite()) return;
  meterExcites_ = meterExcites_ || bench_.MeterExcitation(now) != 0.0;
}

std::vector<std::string> RecordWatch::Doubts() const {
  std::vector<std::string> doubts;
  for (const std::string& name : changed_) {
    doubts.push_back(name + " was changed while it was measured.");
  }
  if (otherExcites_) doubts.emplace_back("The other analyser excited the model.");
  if (meterExcites_) doubts.emplace_back("A meter excited the model as well.");
  return doubts;
}

}  // namespace torvane
