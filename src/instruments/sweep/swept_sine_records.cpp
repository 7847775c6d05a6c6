// The swept-sine analyser's own records in a model file.

#include <array>

#include "core/text.h"
#include "instruments/number_settings.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {
namespace {

using Number = NumberSetting<ZelSweptDSA>;
constexpr std::array Sweep{
    Number{"tSample", &ZelSweptDSA::TSample, &ZelSweptDSA::SetTSample},
    Number{"StartFreq", &ZelSweptDSA::StartFreq, &ZelSweptDSA::SetStartFreq},
    Number{"EndFreq", &ZelSweptDSA::EndFreq, &ZelSweptDSA::SetEndFreq},
    Number{"MeasurementTime", &ZelSweptDSA::MeasurementTime, &ZelSweptDSA::SetMeasurementTime},
    Number{"SettleTime", &ZelSweptDSA::SettleTime, &ZelSweptDSA::SetSettleTime},
};
constexpr std::array ExcitationNumbers{
    Number{"ExAmplitude", &ZelSweptDSA::Amplitude, &ZelSweptDSA::SetAmplitude},
    Number{"ExOffset", &ZelSweptDSA::Offset, &ZelSweptDSA::SetOffset},
};

}  // namespace

void ZelSweptDSA::SaveSetup(RecordWriter& writer) const {
  SaveFreqRange(writer);
  SaveNumbers<ZelSweptDSA>(writer, *this, Sweep);
  writer.Write("StepsPerDecade", {std::to_string(stepsPerDecade_)});
  SaveNumbers<ZelSweptDSA>(writer, *this, ExcitationNumbers);
}

bool ZelSweptDSA::LoadSetup(const Record& record) {
  if (record.Keyword() == "StepsPerDecade") {
    if (const auto steps = ToInteger(record.Fields[3])) SetStepsPerDecade(*steps);
    return true;
  }
  return LoadNumber<ZelSweptDSA>(record, *this, Sweep) ||
         LoadNumber<ZelSweptDSA>(record, *this, ExcitationNumbers);
}

}  // namespace torvane
