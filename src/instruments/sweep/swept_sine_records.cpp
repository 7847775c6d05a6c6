// The swept-sine analyser's own records in a model file.

#include <array>

#include "core/files/record.h"
#include "core/text.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {
namespace {

struct NumberRecord {
  const char* Keyword;
  double (ZelSweptDSA::*Value)() const;
  void (ZelSweptDSA::*Set)(double);
};
constexpr std::array Sweep{
    NumberRecord{"tSample", &ZelSweptDSA::TSample, &ZelSweptDSA::SetTSample},
    NumberRecord{"StartFreq", &ZelSweptDSA::StartFreq, &ZelSweptDSA::SetStartFreq},
    NumberRecord{"EndFreq", &ZelSweptDSA::EndFreq, &ZelSweptDSA::SetEndFreq},
    NumberRecord{"MeasurementTime", &ZelSweptDSA::MeasurementTime,
                 &ZelSweptDSA::SetMeasurementTime},
    NumberRecord{"SettleTime", &ZelSweptDSA::SettleTime, &ZelSweptDSA::SetSettleTime},
};
constexpr std::array ExcitationNumbers{
    NumberRecord{"ExAmplitude", &ZelSweptDSA::Amplitude, &ZelSweptDSA::SetAmplitude},
    NumberRecord{"ExOffset", &ZelSweptDSA::Offset, &ZelSweptDSA::SetOffset},
};

template <class Numbers>
void Save(RecordWriter& writer, const ZelSweptDSA& analyser, const Numbers& numbers) {
  for (const NumberRecord& number : numbers) {
    writer.Write(number.Keyword, {FormatRecordNumber((analyser.*number.Value)())});
  }
}

template <class Numbers>
bool Load(const Record& record, ZelSweptDSA& analyser, const Numbers& numbers) {
  for (const NumberRecord& number : numbers) {
    if (record.Keyword() != number.Keyword) continue;
    if (const auto value = ToNumber(record.Fields[3])) (analyser.*number.Set)(*value);
    return true;
  }
  return false;
}

}  // namespace

void ZelSweptDSA::SaveSetup(RecordWriter& writer) const {
  SaveFreqRange(writer);
  Save(writer, *this, Sweep);
  writer.Write("StepsPerDecade", {std::to_string(stepsPerDecade_)});
  Save(writer, *this, ExcitationNumbers);
}

bool ZelSweptDSA::LoadSetup(const Record& record) {
  if (record.Keyword() == "StepsPerDecade") {
    if (const auto steps = ToInteger(record.Fields[3])) SetStepsPerDecade(*steps);
    return true;
  }
  return Load(record, *this, Sweep) || Load(record, *this, ExcitationNumbers);
}

}  // namespace torvane
