#include "drawing/svg_writer.h"

#include <array>
#include <charconv>
#include <cmath>

#include "drawing/escape.h"

namespace torvane::drawing {

namespace {

constexpr double Ascent = 0.8;  // of a name's place above the baseline, of the text's size
constexpr double Height = 1.05;

std::string Attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + Coordinate(value) + "\"";
}

std::string IdOf(Run::Kind kind, const std::string& name) {
  return (kind == Run::Kind::Signal ? "signal " : "constant ") + name;
}

bool IsName(const Run& run) {
  return run.What == Run::Kind::Constant || run.What == Run::Kind::Signal;
}

std::string SpanOf(const Run& run) {
  std::string text = EscapedForXml(run.Text);
  switch (run.What) {
    case Run::Kind::Constant:
      return "<tspan fill=\"#0b5cad\" font-weight=\"bold\">" + text + "</tspan>";
    case Run::Kind::Signal:
      return "<tspan fill=\"#a3341b\" font-weight=\"bold\">" + text + "</tspan>";
    case Run::Kind::Quiet:
      return "<tspan fill=\"#4b5563\">" + text + "</tspan>";
    default:
      return text;
  }
}

}  // namespace

std::string Coordinate(double x) {
  const double rounded = std::round(x * 10.0) / 10.0;
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), rounded + 0.0);
  return {text.data(), end.ptr};
}

std::string Through(const Points& points) {
  std::string data;
  for (const auto& [x, y] : points) {
    data += data.empty() ? "M" : " L";
    data += Coordinate(x);
    data += ' ';
    data += Coordinate(y);
  }
  return data;
}

void SvgWriter::Rect(double x, double y, double width, double height,
                     const std::string& attributes) {
  shapes_ += "  <rect" + Attribute("x", x) + Attribute("y", y) + Attribute("width", width) +
             Attribute("height", height) + " " + attributes + "/>\n";
}

void SvgWriter::Circle(double x, double y, double radius, const std::string& attributes) {
  shapes_ += "  <circle" + Attribute("cx", x) + Attribute("cy", y) + Attribute("r", radius) + " " +
             attributes + "/>\n";
}

void SvgWriter::Path(const std::string& data, const std::string& attributes) {
  shapes_ += "  <path d=\"" + data + "\"" + (attributes.empty() ? "" : " " + attributes) + "/>\n";
}

void SvgWriter::Text(double x, double baseline, const Line& line, int size, Align align,
                     const std::string& attributes) {
  texts_ += "  <text" + Attribute("x", x) + Attribute("y", baseline) +
            Attribute("font-size", size) +
            (align == Align::Middle ? " text-anchor=\"middle\"" : "") +
            (attributes.empty() ? "" : " " + attributes) + ">";
  double at = align == Align::Middle ? x - WidthOf(line, size) / 2 : x;
  for (const Run& run : line) {
    const double width = WidthOf({run}, size);
    if (IsName(run)) Name(run, at, baseline, width, size);
    at += width;
    texts_ += SpanOf(run);
  }
  texts_ += "</text>\n";
}

void SvgWriter::Name(const Run& run, double x, double baseline, double width, int size) {
  const std::string id = IdOf(run.What, run.Text);
  const int count = ++named_[id + "#"];
  Place(id + "#" + std::to_string(count), x, baseline - Ascent * size, width, Height * size);
}

void SvgWriter::Room(Run::Kind kind, const std::string& name, double x, double y, double width,
                     double height) {
  const std::string id = IdOf(kind, name);
  if (++named_[id] == 1) Place(id, x, y, width, height);
}

void SvgWriter::Loop(double x, double y, double width, double height) {
  Place("loop", x, y, width, height);
}

void SvgWriter::Place(const std::string& id, double x, double y, double width, double height) {
  places_ += "  <rect id=\"" + EscapedForXml(id) + "\"" + Attribute("x", x) + Attribute("y", y) +
             Attribute("width", width) + Attribute("height", height) + "/>\n";
}

std::string SvgWriter::Written(const std::string& title, double width, double height) const {
  const std::string w = Coordinate(width);
  const std::string h = Coordinate(height);
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + w + "\" height=\"" + h +
         "\" viewBox=\"0 0 " + w + " " + h + "\">\n <title>" + EscapedForXml(title) +
         "</title>\n <rect x=\"0\" y=\"0\" width=\"" + w + "\" height=\"" + h +
         "\" fill=\"#ffffff\"/>\n"
         " <g fill=\"none\" stroke=\"#1f2a37\" stroke-width=\"2\" stroke-linejoin=\"round\">\n" +
         shapes_ + " </g>\n <g font-family=\"DejaVu Sans\" fill=\"#1f2a37\">\n" + texts_ +
         " </g>\n <g fill=\"none\" stroke=\"none\">\n" + places_ + " </g>\n</svg>\n";
}

}  // namespace torvane::drawing
