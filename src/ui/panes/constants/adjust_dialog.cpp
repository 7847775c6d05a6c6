#include "ui/panes/constants/adjust_dialog.h"

#include <QHideEvent>
#include <QSignalBlocker>
#include <QUrl>
#include <array>

#include "core/text.h"
#include "ui/session/box_queue.h"
#include "ui/session/user_settings.h"
#include "ui/widgets/constant_entry.h"
#include "ui/widgets/edit_binding.h"
#include "ui/widgets/slider_scale.h"
#include "ui/widgets/window_place.h"
#include "ui_adjust.h"

namespace torvane {

namespace {

constexpr int BesideGap = 12;  // between the window and what it stands beside, pixels

// Constants of one name have their window in one place, whatever model they belong to.
QString PlaceKey(const Constant& constant) {
  return QStringLiteral("adjustPlaces/") +
         QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(constant.Name())));
}

}  // namespace

AdjustDialog::AdjustDialog(Constant& constant, QWidget* parent)
    : QDialog(parent, Qt::Tool), constant_(constant), ui_(std::make_unique<Ui::AdjustDialog>()) {
  ui_->setupUi(this);
  const QString name = QString::fromStdString(constant.Name());
  setWindowTitle(name);
  ui_->LDescription->setText(QString::fromStdString(constant.Description()));
  ui_->LDescription->setVisible(!constant.Description().empty());
  ui_->EValue->setAccessibleName(QStringLiteral("Value of ") + name);
  ui_->LUnits->setText(QString::fromStdString(constant.Unit()));
  ui_->LUnits->installEventFilter(this);
  ui_->BChgSign->setVisible(!constant.IsList());
  const auto limit = [&](std::size_t choice, double number) {
    return QString::fromStdString(constant.IsList() ? constant.Choices()[choice]
                                                    : FormatEdit(number));
  };
  ui_->LLower->setText(limit(0, constant.Lower()));
  ui_->LUpper->setText(limit(constant.Choices().size() - 1, constant.Upper()));
  if (constant.IsList()) ui_->SLValue->setMaximum(static_cast<int>(constant.Upper()));
  value_ = new EditBinding(
      *ui_->EValue,
      [this](const std::string& text) {
        if (EnterConstant(constant_, text, *ui_->EValue, ui_->EValue->rect())) return;
        WhenNothingIsOpen(*this, [this] { FocusValue(); });
      },
      [this] { return constant_.DisplayText(); });
  const int eight = ui_->EValue->fontMetrics().horizontalAdvance(QStringLiteral("-0.00000"));
  ui_->EValue->setFixedWidth(eight + 2 * ui_->EValue->fontMetrics().averageCharWidth() + BesideGap);
  ConnectButtons();
  constant_.Observe(*this);
  ShowValue();
}

AdjustDialog::~AdjustDialog() {
  if (isVisible()) RememberPlace();
  constant_.Unobserve(*this);
}

void AdjustDialog::ConnectButtons() {
  const std::array steps = {std::pair{ui_->BBDown, ConstantStep::Down},
                            std::pair{ui_->BBNudgeDown, ConstantStep::NudgeDown},
                            std::pair{ui_->BBDinkyNudgeDown, ConstantStep::DinkyNudgeDown},
                            std::pair{ui_->BBDinkyNudgeUp, ConstantStep::DinkyNudgeUp},
                            std::pair{ui_->BBNudgeUp, ConstantStep::NudgeUp},
                            std::pair{ui_->BBUp, ConstantStep::Up}};
  for (const auto& [button, step] : steps) {
    connect(button, &QAbstractButton::clicked, this, [this, step = step] { constant_.Step(step); });
  }
  connect(ui_->BChgSign, &QAbstractButton::clicked, this, [this] { constant_.ChangeSign(); });
  connect(ui_->SLValue, &QSlider::valueChanged, this, [this](int position) {
    const double fraction = static_cast<double>(position) / ui_->SLValue->maximum();
    constant_.Set(constant_.IsList() ? position : ValueAt(constant_, fraction));
  });
  connect(ui_->BBOK, &QAbstractButton::clicked, this, &QDialog::accept);
  connect(ui_->BBCancel, &QAbstractButton::clicked, this, &QDialog::reject);
}

void AdjustDialog::OpenBeside(const QRect& area) {
  if (!isVisible()) KeepValue();
  adjustSize();
  const QPoint beside(area.left() - width() - BesideGap, area.top());
  const QPoint left = UserSettings().value(PlaceKey(constant_), beside).toPoint();
  move(OnDisplay(isVisible() ? pos() : left, *this));
  show();
  raise();
  FocusValue();
}

void AdjustDialog::KeepValue() {
  opened_ = constant_.FileText();
  value_->Show();
}

void AdjustDialog::FocusValue() {
  if (!isVisible()) return;
  activateWindow();
  ui_->EValue->setFocus();
  ui_->EValue->selectAll();
}

// Hiding takes the focus away, which commits what is typed.
void AdjustDialog::accept() {
  hide();
}

void AdjustDialog::reject() {
  value_->Show();
  constant_.SetFromText(opened_);
  hide();
}

void AdjustDialog::hideEvent(QHideEvent* event) {
  QDialog::hideEvent(event);
  if (!event->spontaneous()) RememberPlace();
}

void AdjustDialog::RememberPlace() {
  UserSettings().setValue(PlaceKey(constant_), pos());
}

bool AdjustDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->LUnits && event->type() == QEvent::MouseButtonDblClick) {
    constant_.SetToZero();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void AdjustDialog::ConstantChanged(const Constant& /*constant*/) {
  ShowValue();
}

void AdjustDialog::ShowValue() {
  value_->Show();
  for (QWidget* up : {ui_->BBUp, ui_->BBNudgeUp, ui_->BBDinkyNudgeUp}) {
    up->setEnabled(constant_.CanStepUp());
  }
  for (QWidget* down : {ui_->BBDown, ui_->BBNudgeDown, ui_->BBDinkyNudgeDown}) {
    down->setEnabled(constant_.CanStepDown());
  }
  const QSignalBlocker blocker(ui_->SLValue);
  const double fraction = FractionOf(constant_);
  ui_->SLValue->setValue(constant_.IsList() ? constant_.Choice()
                                            : qRound(fraction * ui_->SLValue->maximum()));
}

}  // namespace torvane
