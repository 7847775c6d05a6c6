#include "instruments/analyser/analyser.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/files/record.h"
#include "core/messages.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

FrequencyAnalyser::FrequencyAnalyser(InstrumentKind kind, std::string name, ZelBenchTop& bench,
                                     std::string label, bool visible)
    : Instrument(kind, std::move(name)),
      ResponseAxes(std::move(label), SlotCount),
      bench_(bench),
      visible_(visible) {
  bench.AddInstrument(*this);
}

void FrequencyAnalyser::AddChannel(std::unique_ptr<AnalyserChannel> channel) {
  channels_.push_back(std::move(channel));
  if (channels_.size() == 1) input_ = channels_.back().get();
  if (channels_.size() == 2) output_ = channels_.back().get();
}

void FrequencyAnalyser::CheckChannels() const {
  if (channels_.size() < 2) Error(Label() + " initialized with fewer than 2 variables");
}

AnalyserChannel* FrequencyAnalyser::FindChannel(const std::string& name) const {
  const auto found = std::find_if(channels_.begin(), channels_.end(),
                                  [&](const auto& channel) { return channel->Name() == name; });
  return found == channels_.end() ? nullptr : found->get();
}

bool FrequencyAnalyser::Choose(AnalyserChannel*& chosen, const std::string& name,
                               const char* what) {
  AnalyserChannel* channel = FindChannel(name);
  if (!channel) {
    Error("Cannot find channel " + name);
    return false;
  }
  Change(
      [&] {
        chosen = channel;
        phaseAdd_ = 0.0;
        DropTheory();
        MakeResponses();
      },
      [&] { return SettingCaption(what, name); });
  return true;
}

bool FrequencyAnalyser::SetInput(const std::string& name) {
  return Choose(input_, name, "Input");
}

bool FrequencyAnalyser::SetOutput(const std::string& name) {
  return Choose(output_, name, "Output");
}

void FrequencyAnalyser::AddSetup(std::string name, std::string input, std::string output,
                                 double phaseAdd) {
  if (setups_.size() == MaxSetups) {
    Error("Call to Set " + Label() + " Channel Button with Button out of range");
  } else if (!FindChannel(output)) {
    Error("Call to Set " + Label() + " Channel with unknown output channel: " + output);
  } else if (!FindChannel(input)) {
    Error("Call to Set " + Label() + " Channel with with unknown input channel: " + input);
  } else {
    setups_.push_back({std::move(name), std::move(input), std::move(output), phaseAdd});
  }
}

bool FrequencyAnalyser::SelectSetup(int index) {
  if (index < 0 || index >= static_cast<int>(setups_.size())) {
    Error("Call to Enable " + Label() + " Channel Button with Illegal Value");
    return false;
  }
  const AnalyserSetup& setup = setups_[static_cast<std::size_t>(index)];
  Change(
      [&] {
        input_ = FindChannel(setup.Input);
        output_ = FindChannel(setup.Output);
        phaseAdd_ = setup.PhaseAdd;
        DropTheory();
        MakeResponses();
      },
      [&] { return SettingCaption("Channels", setup.Name); });
  return true;
}

int FrequencyAnalyser::CurrentSetup() const {
  const auto found = std::find_if(setups_.begin(), setups_.end(), [&](const AnalyserSetup& setup) {
    return input_ && output_ && setup.Input == input_->Name() && setup.Output == output_->Name() &&
           setup.PhaseAdd == phaseAdd_;
  });
  return found == setups_.end() ? -1 : static_cast<int>(found - setups_.begin());
}

double FrequencyAnalyser::Difference(Reading reading, int slot, int index) const {
  if (!input_ || !output_) return 0.0;
  const double output = (output_->*reading)(slot, index);
  return OutputOnly() ? output : output - (input_->*reading)(slot, index);
}

double FrequencyAnalyser::WrappedPhase(int slot, int index) const {
  const double phase = WrapPhase(Difference(&AnalyserChannel::Phase, slot, index));
  return phaseAdd_ == 0.0 ? phase : WrapPhase(phase + phaseAdd_);
}

// Bins beyond the response, of a spectrum's upper half, are the channels' own; what they do not
// have they report.
double FrequencyAnalyser::ValueOf(double ResponsePoint::*value, int slot, int index) const {
  const ResponsePoint* point = HasData(slot) ? ShownResponse(slot).At(index) : nullptr;
  if (point) return point->*value;
  return value == &ResponsePoint::Gain ? Difference(&AnalyserChannel::Gain, slot, index)
                                       : WrappedPhase(slot, index);
}

double FrequencyAnalyser::Interpolated(double ResponsePoint::*value, int slot, double index) const {
  constexpr double Far = 1e9;
  if (!(index >= 0.0 && index < Far)) return ValueOf(value, slot, -1);
  const int k = static_cast<int>(index);
  if (k == index) return ValueOf(value, slot, k);
  return ((k + 1) - index) * ValueOf(value, slot, k) + (index - k) * ValueOf(value, slot, k + 1);
}

double FrequencyAnalyser::ResponseGain(int slot, double index) const {
  return Interpolated(&ResponsePoint::Gain, slot, index);
}

double FrequencyAnalyser::ResponsePhase(int slot, double index) const {
  return Interpolated(&ResponsePoint::Phase, slot, index);
}

bool FrequencyAnalyser::StoreData(int slot) {
  if (!HasData(0)) {
    Note("There is no measurement to store.");
    return false;
  }
  if (!StoreSlot(slot)) return false;
  SlotOf(slot) = SlotAt(0);
  SlotOf(slot).Enabled = SlotOf(slot).Shown = true;
  Changed();
  return true;
}

void FrequencyAnalyser::SetShown(int slot, bool shown) {
  ResponseSlot& trace = SlotOf(slot);
  if (KeptTrace(slot).Enabled) Store(trace.Shown, shown, slot == 0 ? "Current" : "Memory");
}

void FrequencyAnalyser::SetSetting(double& setting, double value, const char* name) {
  if (std::isfinite(value)) Store(setting, AsRecorded(value), name);
}

void FrequencyAnalyser::SetChecked(double& setting, double value, bool good, const char* message,
                                   const char* name, double limit) {
  if (!good) {
    Error(message);
  } else if (!(std::abs(value) <= limit)) {
    Error(std::string("Attempt to set ") + name + " beyond " + FormatEdit(limit));
  } else {
    SetSetting(setting, value, name);
  }
}

void FrequencyAnalyser::TakeOrigin() {
  RecordOf(0).Origin = OriginNow(bench_);
  RecordOf(0).AccurateUpTo = AccurateUpTo();
}

void FrequencyAnalyser::EnableTrace(int slot) {
  ResponseSlot& trace = SlotOf(slot);
  MarkStale();
  if (trace.Enabled) return;
  trace.Enabled = trace.Shown = true;
  TellSettingsChanged();
}

double FrequencyAnalyser::LimitExcitation(double value, double amplitude, double offset) {
  const double upper = offset + amplitude / 2.0;
  const double lower = offset - amplitude / 2.0;
  return value > upper || value < lower ? upper : value;
}

void FrequencyAnalyser::Changed() {
  MarkStale();
  TellSettingsChanged();
}

bool FrequencyAnalyser::TakeNeedsRedraw() {
  return std::exchange(needsRedraw_, false);
}

void FrequencyAnalyser::SetVisible(bool visible) {
  if (visible_ == visible) return;
  visible_ = visible;
  Changed();
}

std::optional<ModelLoop> LoopOnBench(const ZelBenchTop& bench) {
  const auto& analysers = bench.Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) return std::nullopt;
  return dynamic_cast<const FrequencyAnalyser&>(*analysers.front()).Loop();
}

}  // namespace torvane
