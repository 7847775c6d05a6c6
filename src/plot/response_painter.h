#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <functional>
#include <string>
#include <vector>

#include "instruments/analyser/analyser.h"
#include "plot/scope_colours.h"

namespace torvane {

/// Paints gain and phase of an analyser against a logarithmic frequency axis: gain above and phase
/// below or, when the analyser's screen is not split, both in one plot with the phase dashed and
/// its axis on the right. The window, picture files and the printer use this one painter.
///
/// A value v is drawn (v + offset) / scale divisions above the centre. All lengths are pixels of
/// the painter given; `pixelRatio` of them make one pixel of text and line design.
class ResponsePainter {
 public:
  /// Divisions of a plot's height: a phase, from -270 to 90 degrees, fits at 90 degrees each.
  static constexpr int VerticalDivisions = 6;

  explicit ResponsePainter(FrequencyAnalyser& analyser) : analyser_(analyser) {}

  /// Area of the whole picture.
  void Layout(const QSize& size, double pixelRatio);
  /// Where gain and phase are drawn; the same area when the screen is not split.
  const QRect& GainPlate() const { return gainPlate_; }
  const QRect& PhasePlate() const { return phasePlate_; }

  /// Frequency that a column of the plates stands for, Hz; the leftmost column is 0.
  double FrequencyAt(double x) const;

  void Paint(QPainter& painter, const ScopeColours& colours);

 private:
  /// One axis: its plate, scale and what it says.
  struct Axis {
    QRect Plate;
    double Scale;
    double Offset;
    std::string Caption;
    bool OnRight;
    bool Dashed;
    std::function<double(int slot, double hz)> Value;
  };

  std::vector<Axis> Axes() const;
  double PhaseOrGap(int slot, double hz) const;
  double ColumnOf(double hz) const;
  void PaintFrequencyLines(QPainter& painter, const ScopeColours& colours,
                           const QRect& plate) const;
  void PaintFrequencyLabels(QPainter& painter, const ScopeColours& colours) const;
  void PaintAxis(QPainter& painter, const ScopeColours& colours, const Axis& axis) const;
  void PaintTrace(QPainter& painter, const Axis& axis, int slot) const;
  void PaintLegend(QPainter& painter, const ScopeColours& colours) const;
  std::string LegendText() const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  FrequencyAnalyser& analyser_;
  double ratio_ = 1.0;
  QSize size_;
  QRect gainPlate_;
  QRect phasePlate_;
  QFont textFont_;
  QFont numberFont_;
};

}  // namespace torvane
