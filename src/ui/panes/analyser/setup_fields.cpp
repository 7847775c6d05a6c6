#include "ui/panes/analyser/setup_fields.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLineEdit>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/messages.h"
#include "core/scale_steps.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/analyser/refusal.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/typed_number.h"

namespace torvane {

namespace {

constexpr double LeastStep = 1e-4;  // from nothing, seconds

}  // namespace

SetupFields::SetupFields(QDialog& dialog, std::function<void()> changed)
    : QObject(&dialog), dialog_(dialog), changed_(std::move(changed)) {}

void SetupFields::Add(QLineEdit& edit, double value) {
  UseFixedDigits(edit);
  fields_.push_back({&edit, 0.0, {}});
  Show(fields_.back(), value);
  if (fields_.size() == 1) edit.selectAll();  // the dialog opens with the cursor there
  connect(&edit, &QLineEdit::textChanged, this, [this] { changed_(); });
}

void SetupFields::AddStepped(QLineEdit& edit, double value, Step down, Step up) {
  Add(edit, value);
  ConnectStep(fields_.size() - 1, "Down", down);
  ConnectStep(fields_.size() - 1, "Up", up);
}

void SetupFields::ConnectStep(std::size_t field, const char* direction, const Step& step) {
  const QString name = QLatin1Char('B') + fields_[field].Edit->objectName().mid(1);
  auto* button = dialog_.findChild<QAbstractButton*>(name + QLatin1String(direction));
  connect(button, &QAbstractButton::clicked, this, [this, field, step] {
    if (const auto value = ValueOf(fields_[field])) Show(fields_[field], step(*value));
  });
}

void SetupFields::Show(Field& field, double value) {
  field.Value = value;
  field.Shown = QString::fromStdString(FormatEdit(value));
  field.Edit->setText(field.Shown);
}

std::optional<double> SetupFields::ValueOf(const Field& field) const {
  if (field.Edit->text() == field.Shown) return field.Value;
  return ParseNumber(WithoutSuffix(field.Edit->text().toStdString()));
}

std::optional<std::vector<double>> SetupFields::Values(bool reporting) const {
  std::vector<double> values;
  for (const Field& field : fields_) {
    std::optional<double> value = ValueOf(field);
    if (!value && reporting) value = ToNumber(field.Edit->text().toStdString());
    if (!value) return std::nullopt;
    values.push_back(*value);
  }
  return values;
}

std::optional<int> WholeNumber(double value, const char* what, bool reporting) {
  if (value != std::floor(value)) {
    if (reporting) Error(std::string(what) + " must be a whole number");
    return std::nullopt;
  }
  constexpr double most = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, -most, most));
}

bool ReportFinding(const SetupFinding& finding) {
  if (IsRefused(finding)) return false;
  if (finding.What == SetupFinding::Kind::Warning) Warning(finding.Text);
  if (finding.What == SetupFinding::Kind::Note) Note(finding.Text);
  return true;
}

double Less(double value) {
  return NextLowest125(value);
}

double More(double value) {
  return NextHighest125(value);
}

double LessOrNone(double value) {
  return value <= LeastStep ? 0.0 : NextLowest125(value);
}

double FewerAverages(double count) {
  return std::max(std::round(NextLowest125(count)), 1.0);
}

double MoreAverages(double count) {
  return std::min<double>(std::round(NextHighest125(count)), FrequencyAnalyser::MaxAverages);
}

double MoreThanNone(double value) {
  return value == 0.0 ? LeastStep : NextHighest125(value);
}

}  // namespace torvane
