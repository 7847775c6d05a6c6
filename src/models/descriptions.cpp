#include "models/descriptions.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "core/constant.h"
#include "core/variable.h"

// What the models' tooltips say. A registered unit is appended by itself; where a constant is
// registered without one, its text gives it.

namespace torvane {

namespace {

struct Entry {
  std::string_view Name;
  std::string_view Text;
  std::string_view Model = {};  ///< number of the one model that it is about; else all of them
};

// An entry about one model stands before the one about all.
constexpr Entry ConstantTexts[] = {
    {"KVP", "Proportional gain of the velocity loop (Amps per rad/s)"},
    {"KVI", "Integral gain of the velocity loop: below it the integral takes over (rad/s)"},
    {"KVD", "Derivative gain of the velocity loop (sec)"},
    {"KVFR", "Share of the command that bypasses the command filter: 1 is all, 0 is none", "6-1"},
    {"KVFR", "Share of the command that bypasses the command filter: 100 is plain PI (%)", "15-1"},
    {"KVFR", "Share of the command that bypasses the command filter: 100 is plain PI"},
    {"fD", "Bandwidth of the low-pass in the derivative"},
    {"CLoop", "Bandwidth of the current loop"},
    {"TSample", "Time between two samples of the filters (sec)", "9-2"},
    {"TSample", "Time between two samples"},
    {"TCalc", "Delay from a sample to the new current command, as a part of TSample"},
    {"KT", "Torque constant of the motor"},
    {"KT-Est", "Estimate of KT that the feed-forward or decoupling works with"},
    {"J", "Inertia of motor and load"},
    {"J-Est", "Estimate of J that the feed-forward works with"},
    {"Use Res?", "Yes: the encoder's position is cut down to whole counts"},
    {"Res", "Smallest step of the filter's numbers", "5-2"},
    {"Res", "Resolution of the position sensor", "13-1"},
    {"Res", "Lines of the encoder; it counts four a line"},
    {"a (Inv Trap)", "Lead of the inverse trapezoid that makes velocity of encoder positions"},

    {"KP", "Proportional gain: Control per Error", "3-1"},
    {"KI", "Integral gain: below it the integral takes over (rad/s)", "3-1"},
    {"G", "Gain of the plant: Response rises by G times Power a second", "3-1"},
    {"Power", "Bandwidth of the power converter", "3-1"},
    {"Feedback", "Bandwidth of the feedback filter", "3-1"},
    {"Feedback", "Where velocity comes from: an ideal tachometer or differences of position"},
    {"Sat", "Largest magnitude of Control", "3-1"},
    {"Wind-up", "Level past which the integral gives way, as a part of Sat", "3-1"},

    {"Pole", "The filter's triple pole, per sample", "5-2"},
    {"Dither", "Size of the alternating dither, in steps of Res", "5-2"},
    {"Quantize?",
     "How the filter's terms become multiples of Res: not at all, to the nearest, down", "5-2"},

    {"KDD", "Disturbance decoupling: share of the measured disturbance that is countered"},
    {"DD LPF", "Bandwidth with which the disturbance is measured"},
    {"Bode type", "What the analysers excite: the command or the disturbance"},

    {"KVF", "Acceleration feed-forward: 100 feeds all of the estimated current"},
    {"Use Inv. PC", "Yes: the feed-forward passes the inverse of the current loop"},
    {"CLoop-Est", "Estimate of CLoop that the inverse filter works with"},

    {"1-Pole Freq", "Break frequency of the one-pole low-pass"},
    {"2-Pole Freq", "Natural frequency of the two-pole low-pass"},
    {"2-Pole Zeta", "Damping of the two-pole low-pass: below 1 it overshoots"},
    {"Notch Freq", "Frequency that the notch takes out"},
    {"Notch Zeta", "Damping of the notch's poles: a smaller one makes a narrower notch"},

    {"Use FbFilt?", "Yes: the loop is fed the filtered velocity vF-Filt"},
    {"Use LPF1?", "Yes: the first feedback low-pass acts"},
    {"LPF1", "Bandwidth of the first feedback low-pass"},
    {"Use LPF2?", "Yes: the second feedback low-pass acts"},
    {"LPF2", "Bandwidth of the second feedback low-pass"},
    {"Pos Err", "Amplitude of the position sensor's cyclic error"},
    {"Err Harm", "Cycles of the position sensor's error in a revolution"},

    {"KS", "Stiffness of the shaft between motor and load"},
    {"KCV", "Damping of the shaft between motor and load"},
    {"JM", "Inertia of the motor"},
    {"JL", "Inertia of the load"},
    {"LPF", "Bandwidth of the two-pole low-pass in the current command"},
    {"Use Notch?", "Yes: the notch acts on the current command"},
    {"Notch", "Frequency of the notch in the current command"},
    {"VMix", "Velocity that is fed back: 1 is the motor's, 0 the load's, between them a mix"},
    {"KCVA", "Active damping by the difference of motor and load velocity (Amps per rad/s)"},

    {"KP", "Gain of the position loop: velocity command per position error", "16-1"},
    {"KFV", "Velocity feed-forward: 100 adds 1 Amp per rad/s", "16-2"},
    {"KFV", "Velocity feed-forward: 100 leaves no following error at constant speed"},
    {"KFA", "Acceleration feed-forward: 100 is the current that J needs"},
    {"KPD", "Derivative gain of the position loop (Amps per rad/s)"},
    {"KPP", "Proportional gain of the position loop (Amps per rad)"},
    {"KPI", "Integral gain of the position loop (Amps per rad, each sample)"},
    {"IKPISat", "Largest current that the integral may ask for"},
    {"Zero on Move?", "Yes: the integral is emptied while the command moves"},
    {"Zero on Rev?", "Without effect in this version"},
};

constexpr Entry SignalTexts[] = {
    {"Time", "Simulated time"},

    {"vC", "The source", "9-1"},
    {"vC", "The source", "9-2"},
    {"vC", "The signal before it is sampled", "5-1"},
    {"vC", "Velocity command: output of the position loop", "16-1"},
    {"vC", "Command velocity"},
    {"vM", "Motor velocity"},
    {"vE", "Not used in this loop", "2-1"},
    {"vE", "Not used in this loop", "16-2"},
    {"vE", "Velocity error: what the controller works on"},
    {"vF", "Feedback velocity: what the controller is told"},
    {"pM", "Motor position"},
    {"pF", "Not used in this loop", "2-1"},
    {"pF", "Feedback position, as sampled"},
    {"iC", "Current command: what the controller asks for"},
    {"iF", "Current feedback: the current that flows"},
    {"tM", "Torque that turns the motor"},
    {"tE", "Torque of the current alone: KT iF"},
    {"tD", "Disturbance torque"},

    {"Command", "Command of the loop"},
    {"Error", "Error: Command less Feedback"},
    {"Power", "Output of the power converter"},
    {"Feedback", "Response as it is measured"},
    {"Control", "Output of the controller, limited to Sat"},
    {"Response", "Output of the plant"},
    {"ErrorInt", "Integral of Error"},
    {"vEInt", "Integral of the velocity error"},

    {"vSample", "The signal as sampled: it holds between two samples"},
    {"Input", "The generator as sampled"},
    {"Output", "Output of the filter"},
    {"vLP1", "Output of the one-pole low-pass"},
    {"vLP2", "Output of the two-pole low-pass"},
    {"vNotch", "Output of the notch"},

    {"vF-Filt", "Feedback velocity behind the low-passes"},
    {"pE", "Cyclic error of the position sensor", "13-1"},
    {"pC", "Sum of the command velocity, to compare pM with", "13-1"},

    {"vMF", "Motor velocity as estimated from its position"},
    {"vL", "Load velocity"},
    {"vLF", "Load velocity as estimated from its position"},
    {"pL", "Load position"},

    {"vPC", "Velocity of the position command"},
    {"pC", "Position command"},
    {"pE", "Position error"},
};

/// The first entry about the name in the model, with the unit.
std::string TextOf(std::span<const Entry> entries, const std::string& name, const std::string& unit,
                   std::string_view model) {
  const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
    return entry.Name == name && (entry.Model.empty() || entry.Model == model);
  });
  if (found == entries.end()) return "";
  return std::string(found->Text) + (unit.empty() ? "" : " (" + unit + ")");
}

}  // namespace

void DescribeModel(ZelModel& model) {
  const std::string_view name = model.Name();
  const std::string_view number = name.substr(0, name.find(' '));
  const ZelBenchTop& bench = model.Bench();
  for (Constant* constant : bench.Constants()) {
    constant->Describe(TextOf(ConstantTexts, constant->Name(), constant->Unit(), number));
  }
  for (Variable* signal : bench.Variables()) {
    signal->Describe(TextOf(SignalTexts, signal->Name(), signal->Unit(), number));
  }
  Variable* const time = bench.TimeVar();
  time->Describe(TextOf(SignalTexts, time->Name(), time->Unit(), number));
}

}  // namespace torvane
