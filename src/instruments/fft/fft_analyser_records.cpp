// The FFT analyser's own records in a model file.

#include <array>

#include "core/files/record.h"
#include "core/text.h"
#include "instruments/fft/fft_analyser.h"

namespace torvane {
namespace {

constexpr double EndDelayShare = 0.2;  // of a record

struct NumberRecord {
  const char* Keyword;
  double (ZelXfer::*Value)() const;
  void (ZelXfer::*Set)(double);
};
constexpr std::array Times{
    NumberRecord{"tSample", &ZelXfer::TSample, &ZelXfer::SetTSample},
    NumberRecord{"tStartDelay", &ZelXfer::TStartDelay, &ZelXfer::SetTStartDelay},
    NumberRecord{"tEndDelay", &ZelXfer::TEndDelay, &ZelXfer::SetTEndDelay},
};
constexpr std::array ExcitationNumbers{
    NumberRecord{"ExAmplitude", &ZelXfer::Amplitude, &ZelXfer::SetAmplitude},
    NumberRecord{"ExOffset", &ZelXfer::Offset, &ZelXfer::SetOffset},
};

template <class Numbers>
void Save(RecordWriter& writer, const ZelXfer& xfer, const Numbers& numbers) {
  for (const NumberRecord& number : numbers) {
    writer.Write(number.Keyword, {FormatRecordNumber((xfer.*number.Value)())});
  }
}

template <class Numbers>
bool Load(const Record& record, ZelXfer& xfer, const Numbers& numbers) {
  for (const NumberRecord& number : numbers) {
    if (record.Keyword() != number.Keyword) continue;
    if (const auto value = ToNumber(record.Fields[3])) (xfer.*number.Set)(*value);
    return true;
  }
  return false;
}

}  // namespace

void ZelXfer::SaveSetup(RecordWriter& writer) const {
  writer.Write("Spectrum", {FlagText(spectrum_)});
  SaveFreqRange(writer);
  Save(writer, *this, Times);
  writer.Write("Order", {std::to_string(order_)});
  Save(writer, *this, ExcitationNumbers);
}

bool ZelXfer::LoadSetup(const Record& record) {
  const std::string& text = record.Fields[3];
  if (record.Keyword() == "Spectrum") {
    SetSpectrum(IsOn(text));
    return true;
  }
  if (record.Keyword() == "Order") {
    if (const auto order = ToInteger(text)) SetOrder(*order);
    return true;
  }
  // Which end delays are possible depends on order and sample time, wherever in the file they
  // stand.
  if (record.Keyword() == "tEndDelay") {
    if (const auto seconds = ToNumber(text)) fileEndDelay_ = {*seconds, record.Number};
    return true;
  }
  return Load(record, *this, Times) || Load(record, *this, ExcitationNumbers);
}

void ZelXfer::FinishLoading(const std::function<void(int line)>& atLine) {
  if (fileEndDelay_) {
    atLine(fileEndDelay_->Line);
    SetTEndDelay(fileEndDelay_->Seconds);
    fileEndDelay_.reset();
  }
  // A shorter record may leave no room for the end delay from before.
  const double record = Length() * tSample_;
  if (tEndDelay_ >= record) SetSetting(tEndDelay_, EndDelayShare * record);
  FrequencyAnalyser::FinishLoading(atLine);
}

}  // namespace torvane
