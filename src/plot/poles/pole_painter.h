#pragma once

#include <QFont>
#include <QPainter>
#include <complex>
#include <optional>
#include <string>
#include <vector>

#include "plot/picture.h"
#include "plot/poles/pole_grid.h"
#include "plot/response/plane_axes.h"

namespace torvane {

/// Poles of a loop, and how they move with one of its constants.
struct PoleMap {
  double Ts = 0.0;  ///< between samples, seconds; 0 of a continuous loop, in the s plane
  std::vector<std::complex<double>> Poles;
  std::vector<std::vector<std::complex<double>>> Ways;  ///< of a root locus
  std::string Varied;                                   ///< what it is over; empty without
};

/// The part of the plane that is shown.
struct PoleView {
  QPointF Centre;
  double Scale = 0.0;  ///< of a division; 0 shows all poles

  bool operator==(const PoleView&) const = default;
};

/// Paints poles as crosses in the s or the z plane, with the limit of stability, lines of equal
/// damping and natural frequency, and the ways of a root locus. Lengths are as in ResponsePainter.
class PolePainter {
 public:
  static constexpr int Divisions = 6;  ///< of the plate's shorter side

  explicit PolePainter(const PoleMap& map) : map_(map) {}

  /// Area of the whole picture.
  void Layout(const QSize& size, double pixelRatio, const PoleView& view);
  void Paint(QPainter& painter, const ScopeColours& colours) const;

  const PlaneAxes& Axes() const { return axes_; }
  /// The pole that stands nearest, by its place among them, within reach of the mouse.
  std::optional<std::size_t> PoleAt(const QPointF& place) const;

 private:
  PoleView Fitting() const;
  double Reach() const;
  QPointF PlaceOf(std::complex<double> value) const;
  QPolygonF PlacesOf(const std::vector<std::complex<double>>& values, bool mirrored) const;
  void PaintAxes(QPainter& painter, const ScopeColours& colours) const;
  void PaintNumbers(QPainter& painter, bool across) const;
  void PaintGrid(QPainter& painter, const ScopeColours& colours) const;
  void PaintLabel(QPainter& painter, const QPointF& at, const std::string& text,
                  std::vector<QRectF>& taken) const;
  void PaintLimit(QPainter& painter, const ScopeColours& colours) const;
  void PaintWays(QPainter& painter, const ScopeColours& colours) const;
  void PaintPoles(QPainter& painter, const ScopeColours& colours) const;
  QRectF Near() const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  const PoleMap& map_;
  double ratio_ = 1.0;
  QSize size_;
  PlaneAxes axes_;
  QFont textFont_;
  QFont numberFont_;
};

/// On paper, as far as the view shows it.
Picture PolePicture(PoleMap map, const PoleView& view);

}  // namespace torvane
