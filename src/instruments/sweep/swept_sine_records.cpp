// The swept-sine analyser's own records in a model file.

#include <array>

#include "core/text.h"
#include "instruments/number_settings.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {
namespace {

using SweepNumber = NumberSetting<ZelSweptDSA>;
constexpr std::array Sweep{
    SweepNumber{"tSample", &ZelSweptDSA::TSample, &ZelSweptDSA::SetTSample},
    SweepNumber{"StartFreq", &ZelSweptDSA::StartFreq, &ZelSweptDSA::SetStartFreq},
    SweepNumber{"EndFreq", &ZelSweptDSA::EndFreq, &ZelSweptDSA::SetEndFreq},
    SweepNumber{"MeasurementTime", &ZelSweptDSA::MeasurementTime, &ZelSweptDSA::SetMeasurementTime},
    SweepNumber{"SettleTime", &ZelSweptDSA::SettleTime, &ZelSweptDSA::SetSettleTime},
};
constexpr std::array SweepExcitation{
    SweepNumber{"ExAmplitude", &ZelSweptDSA::Amplitude, &ZelSweptDSA::SetAmplitude},
    SweepNumber{"ExOffset", &ZelSweptDSA::Offset, &ZelSweptDSA::SetOffset},
};

}  // namespace

void ZelSweptDSA::SaveSetup(RecordWriter& writer) const {
  SaveFreqRange(writer);
  SaveNumbers<ZelSweptDSA>(writer, *this, Sweep);
  writer.Write("StepsPerDecade", {std::to_string(stepsPerDecade_)});
  SaveNumbers<ZelSweptDSA>(writer, *this, SweepExcitation);
}

bool ZelSweptDSA::LoadSetup(const Record& record) {
  if (record.Keyword() == "StepsPerDecade") {
    if (const auto steps = ToInteger(record.Fields[3])) SetStepsPerDecade(*steps);
    return true;
  }
  return LoadNumber<ZelSweptDSA>(record, *this, Sweep) ||
         LoadNumber<ZelSweptDSA>(record, *this, SweepExcitation);
}

}  // namespace torvane
