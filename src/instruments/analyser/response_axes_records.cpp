// An analyser's plot in a model file, and what no file keeps of it.

#include <algorithm>
#include <array>
#include <string>

#include "core/files/record.h"
#include "core/text.h"
#include "instruments/analyser/response_axes.h"
#include "instruments/number_settings.h"

namespace torvane {
namespace {

constexpr std::size_t ValueField = 3;

using AxesNumber = NumberSetting<ResponseAxes>;
constexpr std::array Scales{
    AxesNumber{"GainScale", &ResponseAxes::GainScale, &ResponseAxes::SetGainScale},
    AxesNumber{"GainOffset", &ResponseAxes::GainOffset, &ResponseAxes::SetGainOffset},
    AxesNumber{"PhaseScale", &ResponseAxes::PhaseScale, &ResponseAxes::SetPhaseScale},
    AxesNumber{"PhaseOffset", &ResponseAxes::PhaseOffset, &ResponseAxes::SetPhaseOffset},
};

struct ViewSwitch {
  const char* Keyword;
  bool ResponseView::*On;
};
constexpr std::array ViewSwitches{
    ViewSwitch{"OpenLoop", &ResponseView::OpenLoop},
    ViewSwitch{"Unwrapped", &ResponseView::Unwrapped},
    ViewSwitch{"GroupDelay", &ResponseView::GroupDelay},
    ViewSwitch{"Theory", &ResponseView::Theory},
};
struct WindowNumber {
  const char* Keyword;
  double NyquistWindow::*Value;
};
constexpr std::array WindowNumbers{
    WindowNumber{"NyquistScale", &NyquistWindow::Scale},
    WindowNumber{"NyquistReal", &NyquistWindow::Real},
    WindowNumber{"NyquistImaginary", &NyquistWindow::Imaginary},
};
constexpr int LastPlot = static_cast<int>(ResponsePlot::Nichols);

std::string CursorKeyword(std::size_t cursor) {
  return "Cursor" + std::to_string(cursor);
}

}  // namespace

void ResponseAxes::SaveScales(RecordWriter& writer) const {
  SaveNumbers<ResponseAxes>(writer, *this, Scales);
  writer.Write("FindType", {findType_});
}

void ResponseAxes::SaveFreqRange(RecordWriter& writer) const {
  writer.Write("FreqMin", {FormatRecordNumber(freqMin_)});
  writer.Write("FreqMax", {FormatRecordNumber(freqMax_)});
}

void ResponseAxes::SaveLook(RecordWriter& writer) const {
  const auto write = [&](const std::string& keyword, int value) {
    writer.Write(keyword, {std::to_string(value)});
  };
  write("Cursors", static_cast<int>(cursors_));
  for (std::size_t i = 0; i < cursorPixel_.size(); ++i) write(CursorKeyword(i), cursorPixel_[i]);
  write("CursorTrace", cursorSlot_);
  write("SplitScreen", splitScreen_);
  write("Plot", static_cast<int>(view_.Plot));
  for (const ViewSwitch& view : ViewSwitches) write(view.Keyword, view_.*view.On);
  write("MarginsAs", static_cast<int>(view_.MarginsAs));
  for (const WindowNumber& one : WindowNumbers) {
    writer.Write(one.Keyword, {FormatShortest(nyquist_.*one.Value)});
  }
}

bool ResponseAxes::LoadWindow(const Record& record) {
  for (const WindowNumber& one : WindowNumbers) {
    if (record.Keyword() != one.Keyword) continue;
    NyquistWindow window = nyquist_;
    window.*one.Value = ParseNumber(record.Field(ValueField)).value_or(0.0);
    SetNyquist(window);
    return true;
  }
  return false;
}

bool ResponseAxes::LoadLook(const std::string& keyword, int value) {
  for (int i = 0; i < static_cast<int>(cursorPixel_.size()); ++i) {
    if (keyword != CursorKeyword(static_cast<std::size_t>(i))) continue;
    SetCursorPixel(i, value);
    return true;
  }
  if (keyword == "Cursors") {
    SetCursors(static_cast<CursorMode>(value));
  } else if (keyword == "CursorTrace") {
    SetCursorSlot(value);
  } else if (keyword == "SplitScreen") {
    SetSplitScreen(value != 0);
  } else {
    return LoadView(keyword, value);
  }
  return true;
}

bool ResponseAxes::LoadView(const std::string& keyword, int value) {
  ResponseView view = view_;
  if (keyword == "Plot") {
    view.Plot = static_cast<ResponsePlot>(std::clamp(value, 0, LastPlot));
    SetView(view);
    return true;
  }
  if (keyword == "MarginsAs") {
    view.MarginsAs = static_cast<ReadAs>(std::clamp(value, 0, static_cast<int>(ReadAs::Closed)));
    SetView(view);
    return true;
  }
  for (const ViewSwitch& one : ViewSwitches) {
    if (keyword != one.Keyword) continue;
    view.*one.On = value != 0;
    SetView(view);
    return true;
  }
  return false;
}

bool ResponseAxes::LoadAxis(const Record& record) {
  const std::string& text = record.Fields[ValueField];
  if (LoadNumber<ResponseAxes>(record, *this, Scales)) return true;
  if (record.Keyword() == "FindType") {
    SetFindType(text);
    return true;
  }
  if (record.Keyword() == "FreqMin") {
    const auto hz = ToNumber(text);
    if (!hz) return true;
    if (*hz > 0.0) {
      fileFreqMin_ = *hz;
    } else {
      SetFreqMin(*hz);  // refuses it
    }
    return true;
  }
  if (record.Keyword() == "FreqMax") {
    if (const auto hz = ToNumber(text)) fileFreqMax_ = *hz;
    return true;
  }
  return false;
}

// The limits of the frequency axis push each other about when they are set one by one: those of a
// file are taken together.
void ResponseAxes::FinishLoadingAxis() {
  if (fileFreqMin_ && fileFreqMax_) {
    SetFreqRange(*fileFreqMin_, *fileFreqMax_);
  } else if (fileFreqMin_) {
    // Where both were set before, the lower one may stand closer than it could be moved alone.
    const double high = freqMax_;
    ChangeAxes(
        Touches::Plot,
        [&] {
          SetFreqRange(*fileFreqMin_, high);
          if (freqMax_ == high) return;
          freqMax_ = high;
          SetFreqMin(*fileFreqMin_);
        },
        [&] { return RangeCaption(); });
  } else if (fileFreqMax_) {
    SetFreqMax(*fileFreqMax_);
  }
  fileFreqMin_.reset();
  fileFreqMax_.reset();
}

}  // namespace torvane
