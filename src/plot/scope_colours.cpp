#include "plot/scope_colours.h"

#include <cmath>

namespace torvane {

namespace {

// Found by search among hues of the standard names: any two differ by 25 and more in CIELAB, as
// seen with full colour vision and without red, green or blue cones, and every one has a contrast
// of 3 to its ground. The least difference of the standard colours is 5.
constexpr std::array<QRgb, TraceColourCount> ApartOnLight = {
    0x000000, 0x4345ff, 0x6c2e33, 0x00a1ba, 0xe37617, 0xbf59eb, 0x295f00, 0x817d77};
constexpr std::array<QRgb, TraceColourCount> ApartOnDark = {0xffffff, 0x0077f6, 0xbd4538, 0x00d8f2,
                                                            0xf92600, 0xa65ba7, 0x95ca61, 0x757575};

ScopeColours::Pens StandardPens() {
  ScopeColours::Pens pens;
  for (int index = 0; index < TraceColourCount; ++index) {
    pens[static_cast<std::size_t>(index)] = QColor::fromRgb(TraceColourAt(index).Rgb);
  }
  return pens;
}

ScopeColours::Pens PensOf(const std::array<QRgb, TraceColourCount>& colours) {
  ScopeColours::Pens pens;
  for (std::size_t index = 0; index < pens.size(); ++index) {
    pens[index] = QColor::fromRgb(colours[index]);
  }
  return pens;
}

// Relative luminance, 0 to 1.
double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

constexpr double EqualContrast = 0.179;  // luminance on which black and white read equally well

}  // namespace

ScopeColours ScopeColours::Light(TraceColours traces) {
  return {QColor(0xffffff),
          QColor(0x202428),
          QColor(0xfdfdfb),
          QColor(0xd9dee3),
          QColor(0x9aa3ab),
          QColor(0xb45300),
          traces == TraceColours::Standard ? StandardPens() : PensOf(ApartOnLight)};
}

ScopeColours ScopeColours::Dark() {
  return {QColor(0x232629), QColor(0xe4e6e8), QColor(0x15191d),   QColor(0x2e353b),
          QColor(0x5c6872), QColor(0xffb454), PensOf(ApartOnDark)};
}

const char* ScopeColours::Label(int index) const {
  const bool white = index == 0 && Trace(index) == QColor(Qt::white);
  return white ? "Wht" : TraceColourAt(index).Label;
}

QColor ScopeColours::TextOn(int index) const {
  return Luminance(Trace(index)) > EqualContrast ? QColor(Qt::black) : QColor(Qt::white);
}

}  // namespace torvane
