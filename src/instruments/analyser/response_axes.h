#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "instruments/analyser/nyquist_window.h"
#include "instruments/analyser/response_view.h"

namespace torvane {

struct Record;
class RecordWriter;

/// How responses are looked at, whatever they are: the plot, its axes and scales, cursors and the
/// automatic search.
class ResponseAxes {
 public:
  /// How many cursors there are.
  enum class CursorMode { None, One, Two };
  /// Rightmost pixel that a cursor can be put on.
  static constexpr int LargestPixel = 32767;

  ResponseAxes(const ResponseAxes&) = delete;
  ResponseAxes& operator=(const ResponseAxes&) = delete;

  /// Which plot is shown, and what of the responses; all that is read of them follows.
  const ResponseView& View() const { return view_; }
  void SetView(const ResponseView& view);

  /// Where a Nyquist plot looks; limited to what can be drawn.
  const NyquistWindow& Nyquist() const { return nyquist_; }
  void SetNyquist(const NyquistWindow& window);

  /// Frequency axis, Hz, logarithmic; the limits stay at least 1 % apart.
  double FreqMin() const { return freqMin_; }
  double FreqMax() const { return freqMax_; }
  /// Frequency at a share of the axis, 0 at its low end and 1 at its high end.
  double AxisFrequency(double share) const;
  /// The other way round.
  double AxisShare(double hz) const;
  /// Scales per division (dB, degrees), always positive; offsets in dB and degrees.
  double GainScale() const { return gainScale_; }
  double GainOffset() const { return gainOffset_; }
  double PhaseScale() const { return phaseScale_; }
  double PhaseOffset() const { return phaseOffset_; }
  // Values out of range are reported and refused.
  void SetFreqMin(double hz);
  void SetFreqMax(double hz);
  /// Both limits at once, whatever they were before.
  void SetFreqRange(double low, double high);
  void SetGainScale(double scale);
  void SetGainOffset(double offset);
  void SetPhaseScale(double scale);
  void SetPhaseOffset(double offset);

  /// Text of the automatic search ("-3 dB", "Gain Max", ...); a decimal comma becomes a point, as a
  /// comma ends a field of a file.
  const std::string& FindType() const { return findType_; }
  void SetFindType(const std::string& text);

  CursorMode Cursors() const { return cursors_; }
  void SetCursors(CursorMode mode);
  /// Horizontal positions of cursors 0 and 1 on the plot.
  int CursorPixel(int cursor) const { return cursorPixel_[static_cast<std::size_t>(cursor)]; }
  /// Limited to 0..LargestPixel.
  void SetCursorPixel(int cursor, int pixel);
  /// The trace that the cursors read.
  int CursorSlot() const { return cursorSlot_; }
  void SetCursorSlot(int slot);
  /// Gain above, phase below; else one plot for both.
  bool SplitScreen() const { return splitScreen_; }
  void SetSplitScreen(bool split);

 protected:
  using Caption = std::function<std::string()>;
  /// What a change of a setting asks of the picture.
  enum class Touches {
    Cursors,  ///< drawn over the traces
    Plot,     ///< the traces are drawn anew
    View,     ///< and made anew of the responses
  };

  /// The label ("Xfer", "SweptDSA") stands in the messages of refused settings; there are so many
  /// traces.
  ResponseAxes(std::string label, int slots) : label_(std::move(label)), slots_(slots) {}
  ~ResponseAxes() = default;

  /// Makes a change of the settings for the user: records it for undo and gives notice.
  virtual void ChangeAxes(Touches touches, const std::function<void()>& change,
                          const Caption& caption) = 0;

  const std::string& Label() const { return label_; }

  // A model file's records of it, and those of the settings that no file keeps. Loading tells
  // whether the keyword is one of these.
  void SaveScales(RecordWriter& writer) const;
  void SaveFreqRange(RecordWriter& writer) const;
  void SaveLook(RecordWriter& writer) const;
  bool LoadAxis(const Record& record);
  bool LoadLook(const std::string& keyword, int value);
  bool LoadWindow(const Record& record);
  /// Takes the limits of the frequency axis that a file gave.
  void FinishLoadingAxis();

 private:
  template <class T>
  void StoreIn(Touches touches, T& setting, T value, const Caption& caption) {
    if (setting != value)
      ChangeAxes(
          touches, [&] { setting = value; }, caption);
  }
  void SetNumber(double& setting, double value, const char* name);
  void SetPositive(double& setting, double value, const char* what);
  std::string RangeCaption() const;
  bool LoadView(const std::string& keyword, int value);

  std::string label_;
  int slots_;
  double freqMin_ = 1.0;
  double freqMax_ = 1000.0;
  double gainScale_ = 20.0;
  double gainOffset_ = 0.0;
  double phaseScale_ = 90.0;
  double phaseOffset_ = 0.0;
  std::string findType_ = "-3 dB";
  CursorMode cursors_ = CursorMode::None;
  std::array<int, 2> cursorPixel_{10, 20};
  int cursorSlot_ = 0;
  bool splitScreen_ = true;
  ResponseView view_;
  NyquistWindow nyquist_;
  std::optional<double> fileFreqMin_;  // read from a file that has not ended yet
  std::optional<double> fileFreqMax_;
};

}  // namespace torvane
