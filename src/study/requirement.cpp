#include "study/requirement.h"

#include <algorithm>
#include <cmath>

#include "core/names.h"
#include "core/table_lines.h"
#include "core/text.h"
#include "study/study_fault.h"

namespace torvane {

namespace {

constexpr int Digits = 4;

std::string Plain(const std::string& name) {
  std::string plain = Lower(name);
  std::erase(plain, ' ');
  return plain;
}

std::string WithUnit(double value, const RunMeasure& measure) {
  const std::string number = FormatGeneral(value, Digits, 1);
  return *measure.Unit == '\0' ? number : number + " " + measure.Unit;
}

}  // namespace

const RunMeasure& NamedMeasure(const std::string& name) {
  std::vector<std::string> captions;
  for (const RunMeasure& measure : Measures()) {
    if (Plain(measure.Caption) == Plain(name)) return measure;
    captions.emplace_back(measure.Caption);
  }
  throw StudyFault(UnknownNameText("measure", name, captions));
}

Requirement::Requirement(const std::string& text) {
  const auto bad = [&] {
    return StudyFault("a requirement is MEASURE<NUMBER or MEASURE>NUMBER, not \"" + text + "\"");
  };
  const std::size_t sign = text.find_first_of("<>");
  if (sign == std::string::npos) throw bad();
  const std::size_t number = sign + (text.compare(sign + 1, 1, "=") == 0 ? 2 : 1);
  const auto bound = ParseNumber(std::string(TrimmedField(text.substr(number))));
  if (!bound) throw bad();
  measure_ = &NamedMeasure(text.substr(0, sign));
  atMost_ = text[sign] == '<';
  bound_ = *bound;
}

bool Requirement::Met(const RunReadings& readings) const {
  return Missed(readings) == 0.0;
}

std::optional<double> Requirement::Missed(const RunReadings& readings) const {
  const std::optional<double>& value = readings.*measure_->Value;
  if (!value) {
    const bool met = atMost_ != measure_->MoreIsBetter &&
                     std::ranges::find(readings.Beyond, measure_->Value) != readings.Beyond.end();
    return met ? std::optional(0.0) : std::nullopt;
  }
  const double beyond = atMost_ ? *value - bound_ : bound_ - *value;
  return std::max(0.0, beyond) / (bound_ == 0.0 ? 1.0 : std::abs(bound_));
}

std::string Requirement::Text() const {
  return std::string(measure_->Caption) + (atMost_ ? " < " : " > ") + WithUnit(bound_, *measure_);
}

std::string Requirement::Found(const RunReadings& readings) const {
  const std::optional<double>& value = readings.*measure_->Value;
  if (!value) return std::string("it has no ") + measure_->Caption;
  return std::string(measure_->Caption) + " is " + WithUnit(*value, *measure_);
}

std::optional<double> MeetsAll(const std::vector<Requirement>& all, const RunReadings& readings) {
  double meets = 1.0;
  for (const Requirement& one : all) {
    const auto missed = one.Missed(readings);
    if (!missed) return std::nullopt;
    if (*missed > 0.0) meets = 0.0;
  }
  return meets;
}

}  // namespace torvane
