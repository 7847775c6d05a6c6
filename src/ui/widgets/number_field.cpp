#include "ui/widgets/number_field.h"

#include <QLineEdit>

#include "core/text.h"
#include "ui/widgets/typed_number.h"

namespace torvane {

void NumberField::Show(double value) {
  value_ = value;
  shown_ = QString::fromStdString(FormatEdit(value));
  edit_->setText(shown_);
}

std::optional<double> NumberField::Value() const {
  if (edit_->text() == shown_) return value_;
  return ParseNumber(WithoutSuffix(edit_->text().toStdString()));
}

std::optional<double> NumberField::CheckedValue() const {
  const auto value = Value();
  return value ? value : ToNumber(edit_->text().toStdString());
}

}  // namespace torvane
