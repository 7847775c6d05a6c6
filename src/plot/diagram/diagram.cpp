#include "plot/diagram/diagram.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace torvane {

namespace {

// What the drawings are made of, on either ground.
constexpr std::pair<const char*, const char*> DarkColours[] = {
    {"#ffffff", "#232629"},  // ground
    {"#1f2a37", "#e4e6e8"},  // lines and texts
    {"#4b5563", "#b4bac1"},  // remarks
    {"#6b7280", "#9aa3ab"},  // a trace
    {"#9aa5b1", "#79838d"},  // axes
    {"#c3cad3", "#4a525a"},  // rules
    {"#fff3d1", "#4a4024"},  // sampled blocks
    {"#eaf0f7", "#2c3b4d"},  // continuous blocks
    {"#e3f3e6", "#2b4431"},  // sources
    {"#0b5cad", "#86bdf5"},  // constants
    {"#a3341b", "#ff9a7a"},  // signals
};

QByteArray OnDark(QByteArray svg) {
  for (const auto& [light, dark] : DarkColours) svg.replace(light, dark);
  return svg;
}

QString ElementOf(Diagram::Kind kind, const std::string& name) {
  const char* const of = kind == Diagram::Kind::Signal ? "signal " : "constant ";
  return QLatin1String(of) + QString::fromStdString(name);
}

}  // namespace

Diagram::Diagram(const QByteArray& svg, Ground ground) {
  renderer_.load(ground == Ground::Dark ? OnDark(svg) : svg);
  whole_ = renderer_.viewBoxF();
}

QRectF Diagram::Loop() const {
  const QRectF loop = Bounds(QStringLiteral("loop"));
  return loop.isEmpty() ? whole_ : loop;
}

void Diagram::Paint(QPainter& painter, const QRectF& area, const QRectF& part) {
  renderer_.setViewBox(part);
  renderer_.render(&painter, area);
}

QRectF Diagram::Bounds(const QString& element) const {
  return renderer_.elementExists(element) ? renderer_.boundsOnElement(element) : QRectF();
}

QRectF Diagram::ValuePlace(Kind kind, const std::string& name) const {
  return Bounds(ElementOf(kind, name));
}

QList<QRectF> Diagram::NamePlaces(Kind kind, const std::string& name) const {
  QList<QRectF> places;
  const auto next = [&] {
    return Bounds(ElementOf(kind, name) + QStringLiteral("#%1").arg(places.size() + 1));
  };
  for (QRectF place = next(); !place.isEmpty(); place = next()) places << place;
  return places;
}

std::string PresentValue(double x) {
  if (!std::isfinite(x)) return "-";
  const double size = std::abs(x);
  if (size < 1e-12) return "0";
  std::array<char, 32> text{};
  std::to_chars_result end;
  if (size < 1e-3 || size >= 1e5) {
    end = std::to_chars(text.begin(), text.end(), x, std::chars_format::scientific, 2);
  } else {
    const int decimals = std::clamp(3 - static_cast<int>(std::floor(std::log10(size))), 0, 4);
    end = std::to_chars(text.begin(), text.end(), x, std::chars_format::fixed, decimals);
  }
  return {text.begin(), end.ptr};
}

}  // namespace torvane
