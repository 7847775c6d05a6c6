// The FFT analyser's own records in a model file.

#include <array>
#include <utility>

#include "core/files/record.h"
#include "core/text.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/number_settings.h"

namespace torvane {
namespace {

using XferNumber = NumberSetting<ZelXfer>;
constexpr std::array Times{
    XferNumber{"tSample", &ZelXfer::TSample, &ZelXfer::SetTSample},
    XferNumber{"tStartDelay", &ZelXfer::TStartDelay, &ZelXfer::SetTStartDelay},
    XferNumber{"tEndDelay", &ZelXfer::TEndDelay, &ZelXfer::SetTEndDelay},
};
constexpr std::array XferExcitation{
    XferNumber{"ExAmplitude", &ZelXfer::Amplitude, &ZelXfer::SetAmplitude},
    XferNumber{"ExOffset", &ZelXfer::Offset, &ZelXfer::SetOffset},
};

}  // namespace

void ZelXfer::SaveSetup(RecordWriter& writer) const {
  writer.Write("Spectrum", {FlagText(spectrum_)});
  SaveFreqRange(writer);
  SaveNumbers<ZelXfer>(writer, *this, Times);
  writer.Write("Order", {std::to_string(order_)});
  SaveNumbers<ZelXfer>(writer, *this, XferExcitation);
}

bool ZelXfer::LoadSetup(const Record& record) {
  const std::string& keyword = record.Keyword();
  const std::string& text = record.Fields[3];
  if (keyword == "Spectrum") {
    SetSpectrum(IsOn(text));
    return true;
  }
  // Which end delays are possible depends on order and sample time, wherever in the file they
  // stand: the end delay, from the file or from before, is taken last.
  if (keyword == "tEndDelay") {
    if (const auto seconds = ToNumber(text)) fileEndDelay_ = {*seconds, record.Number};
    return true;
  }
  if (keyword == "tSample" || keyword == "Order") {
    if (!fileEndDelay_) fileEndDelay_ = {tEndDelay_, 0};
  }
  if (keyword == "Order") {
    if (const auto order = ToInteger(text)) SetOrder(*order);
    return true;
  }
  return LoadNumber<ZelXfer>(record, *this, Times) ||
         LoadNumber<ZelXfer>(record, *this, XferExcitation);
}

void ZelXfer::FinishLoading(const std::function<void(int line)>& atLine) {
  if (const auto end = std::exchange(fileEndDelay_, std::nullopt)) {
    const bool ofFile = end->Line > 0;
    if (ofFile) atLine(end->Line);
    if (ofFile || end->Seconds < RecordTime()) SetTEndDelay(end->Seconds);
  }
  FrequencyAnalyser::FinishLoading(atLine);
}

void ZelXfer::SaveMore(RecordWriter& writer) const {
  FrequencyAnalyser::SaveMore(writer);
  writer.Write("Binary", {FlagText(binary_)});
  writer.Write("BypassFilter", {FlagText(bypassFilter_)});
}

bool ZelXfer::LoadMore(const std::string& keyword, int value) {
  if (keyword == "Binary") {
    SetBinary(value != 0);
  } else if (keyword == "BypassFilter") {
    SetBypassFilter(value != 0);
  } else {
    return FrequencyAnalyser::LoadMore(keyword, value);
  }
  return true;
}

}  // namespace torvane
