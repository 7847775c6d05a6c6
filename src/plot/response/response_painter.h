#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <optional>
#include <string>
#include <vector>

#include "plot/curve_painter.h"
#include "plot/response/response_legend.h"
#include "plot/response/response_lines.h"
#include "plot/scope_colours.h"

namespace torvane {

/// Something read off a trace: a distance on one of the axes at a frequency, or a point there.
struct ResponseMark {
  ResponseQuantity Quantity = ResponseQuantity::Gain;
  double Hz = 0.0;
  double From = 0.0;
  double To = 0.0;
  std::string Text;

  bool operator==(const ResponseMark&) const = default;
};

/// Paints gain and phase of an analyser against a logarithmic frequency axis: gain above and phase
/// below or, when the analyser's screen is not split, both in one plot with the phase dashed and
/// its axis on the right. Where the coherence of a shown trace is known, a third, lower plot shows
/// it. A legend says which trace is which. The window, picture files and the
/// printer use this one painter.
///
/// The traces differ in colour and, for eyes and printers without, in the marks that the memories
/// carry and, on request, in line patterns. On request the lower plot shows group delay, on a scale
/// that fits it. A value v is drawn (v + offset) / scale divisions above the centre. All lengths
/// are pixels of the painter given; `pixelRatio` of them make one pixel of text and line design.
class ResponsePainter {
 public:
  /// Divisions of a plot's height: a phase, from -270 to 90 degrees, fits at 90 degrees each.
  static constexpr int VerticalDivisions = 6;

  explicit ResponsePainter(const FrequencyAnalyser& analyser)
      : analyser_(analyser), legend_(analyser) {}

  /// Area of the whole picture. Finds room for the labels and the legend; what is left is the
  /// plots'. Painting is of the analyser as it was laid out.
  void Layout(const QSize& size, double pixelRatio, const TraceLook& look = {});
  /// Where gain and phase are drawn; the same area when the screen is not split.
  const QRect& GainPlate() const { return gainPlate_; }
  const QRect& PhasePlate() const { return phasePlate_; }

  void Paint(QPainter& painter, const ScopeColours& colours);

  /// The analyser's cursors, as far as they are on, with what they point at.
  void PaintCursors(QPainter& painter, const ScopeColours& colours);

  /// What was read off the traces.
  void PaintMarks(QPainter& painter, const ScopeColours& colours,
                  const std::vector<ResponseMark>& marks) const;

 private:
  /// One axis: its plate, scale and what it says.
  struct Axis {
    QRect Plate;
    double Scale;
    double Offset;
    const char* Caption;
    bool OnRight;
    bool Second;  ///< of two in one plate: its traces look different
    ResponseQuantity Quantity;
  };

  std::vector<Axis> Axes() const;
  Axis LowerAxis(bool single) const;
  void FitDelays();
  bool ShowsCoherence() const;
  int CurveCount() const;
  double ColumnOf(double hz) const;
  double YOf(const Axis& axis, double value) const;
  void PaintFrequencyLines(QPainter& painter, const ScopeColours& colours,
                           const QRect& plate) const;
  void PaintFrequencyLabels(QPainter& painter, const ScopeColours& colours) const;
  void PaintAxis(QPainter& painter, const ScopeColours& colours, const Axis& axis) const;
  void PaintTrace(QPainter& painter, const ScopeColours& colours, const Axis& axis, int slot) const;
  void PaintBars(CurvePainter& curve, const Axis& axis, int slot,
                 const std::vector<ResponseLines::Bar>& bars, const QColor& colour) const;
  void PaintTraceMarks(QPainter& painter, const ScopeColours& colours, const Axis& axis, int slot,
                       const ResponseLines& trace) const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  const FrequencyAnalyser& analyser_;
  TraceLook look_;
  std::optional<FrequencyColumns> columns_;
  double ratio_ = 1.0;
  QSize size_;
  QRect gainPlate_;
  QRect phasePlate_;
  QRect coherencePlate_;  ///< empty when there is none
  QFont textFont_;
  QFont numberFont_;
  ResponseLegend legend_;
  double delayScale_ = 1.0;
  double delayOffset_ = 0.0;
};

}  // namespace torvane
