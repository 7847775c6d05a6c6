#pragma once

#include <QByteArray>
#include <QList>
#include <QPainter>
#include <QSvgRenderer>
#include <string>

namespace torvane {

/// A model's block diagram: a drawing whose elements have the names of what stands there. At
/// "signal vC" or "constant KVP" there is room for its value, "signal vC#1", "signal vC#2" and so
/// on are where it is named. "loop" is the part that a title and a legend stand around.
class Diagram {
 public:
  enum class Ground { Light, Dark };
  enum class Kind { Signal, Constant };

  /// `svg` is the drawing as it stands on a light ground.
  Diagram(const QByteArray& svg, Ground ground);

  bool IsValid() const { return renderer_.isValid(); }
  /// In units of the drawing, as all places are.
  const QRectF& Whole() const { return whole_; }
  /// The loop itself, without title and legend.
  QRectF Loop() const;
  /// The room for a value; empty for what the drawing does not have.
  QRectF ValuePlace(Kind kind, const std::string& name) const;
  QList<QRectF> NamePlaces(Kind kind, const std::string& name) const;

  /// Fills the area with a part of the drawing; both should have the same proportions.
  void Paint(QPainter& painter, const QRectF& area, const QRectF& part);

 private:
  QRectF Bounds(const QString& element) const;

  QSvgRenderer renderer_;
  QRectF whole_;
};

/// A value that changes, in about four significant digits and at most nine characters: "-0.0123",
/// "123.4", "1.23e+05". What is less than 1e-12 in magnitude is "0", what is not finite "-".
std::string PresentValue(double x);

}  // namespace torvane
