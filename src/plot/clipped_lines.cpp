#include "plot/clipped_lines.h"

#include <QLineF>
#include <algorithm>
#include <optional>

namespace torvane {

namespace {

// What is left of a piece, by the shares of its length at which it enters and leaves.
std::optional<QLineF> Clipped(const QLineF& piece, const QRectF& within) {
  double enters = 0.0;
  double leaves = 1.0;
  const auto cut = [&](double step, double room) {
    if (step == 0.0) return room >= 0.0;
    (step < 0.0 ? enters : leaves) =
        step < 0.0 ? std::max(enters, room / step) : std::min(leaves, room / step);
    return enters <= leaves;
  };
  if (!cut(-piece.dx(), piece.x1() - within.left()) ||
      !cut(piece.dx(), within.right() - piece.x1()) ||
      !cut(-piece.dy(), piece.y1() - within.top()) ||
      !cut(piece.dy(), within.bottom() - piece.y1())) {
    return std::nullopt;
  }
  return QLineF(enters > 0.0 ? piece.pointAt(enters) : piece.p1(),
                leaves < 1.0 ? piece.pointAt(leaves) : piece.p2());
}

}  // namespace

std::vector<QPolygonF> ClippedLine(const QPolygonF& line, const QRectF& within) {
  std::vector<QPolygonF> parts;
  for (qsizetype i = 1; i < line.size(); ++i) {
    const auto piece = Clipped({line[i - 1], line[i]}, within);
    if (!piece) continue;
    if (parts.empty() || parts.back().back() != piece->p1()) parts.push_back({piece->p1()});
    parts.back() << piece->p2();
  }
  return parts;
}

}  // namespace torvane
