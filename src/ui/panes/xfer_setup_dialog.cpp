#include "ui/panes/xfer_setup_dialog.h"

#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/messages.h"
#include "core/scale_steps.h"
#include "ui/widgets/digits.h"
#include "ui_xfer_setup.h"

namespace torvane {

namespace {

constexpr double FirstDelay = 0.01;  // seconds, from none

double Less(double seconds) {
  return NextLowest125(seconds);
}
double More(double seconds) {
  return seconds == 0.0 ? FirstDelay : NextHighest125(seconds);
}
double LessDelay(double seconds) {
  return seconds <= FirstDelay ? 0.0 : NextLowest125(seconds);
}

// A record has a whole order; what does not fit an integer is beyond every limit.
std::optional<int> WholeOrder(double order) {
  if (order != std::floor(order)) return std::nullopt;
  constexpr double most = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(order, -most, most));
}

}  // namespace

TZelXferSetupF::TZelXferSetupF(ZelXfer& analyser, QWidget* parent)
    : QDialog(parent), analyser_(analyser), ui_(std::make_unique<Ui::TZelXferSetupF>()) {
  ui_->setupUi(this);
  numbers_ = {{NumberField(*ui_->EtSample), &FftSetup::TSample},
              {NumberField(*ui_->EtStartDelay), &FftSetup::TStartDelay},
              {NumberField(*ui_->EtEndDelay), &FftSetup::TEndDelay},
              {NumberField(*ui_->EAmplitude), &FftSetup::Amplitude},
              {NumberField(*ui_->EOffset), &FftSetup::Offset}};
  order_ = NumberField(*ui_->EOrder);
  const FftSetup setup = analyser.Setup();
  for (Number& number : numbers_) number.Field.Show(setup.*number.Value);
  order_.Show(setup.Order);
  for (QLineEdit* edit : findChildren<QLineEdit*>()) {
    UseFixedDigits(*edit);
    connect(edit, &QLineEdit::textChanged, this, &TZelXferSetupF::ShowActiveTime);
  }
  ConnectStep(*ui_->BtSampleDown, numbers_[0].Field, Less);
  ConnectStep(*ui_->BtSampleUp, numbers_[0].Field, More);
  ConnectStep(*ui_->BtStartDelayDown, numbers_[1].Field, LessDelay);
  ConnectStep(*ui_->BtStartDelayUp, numbers_[1].Field, More);
  ConnectStep(*ui_->BtEndDelayDown, numbers_[2].Field, LessDelay);
  ConnectStep(*ui_->BtEndDelayUp, numbers_[2].Field, More);
  ConnectStep(*ui_->BOrderDown, order_, [](double order) { return order - 1.0; });
  ConnectStep(*ui_->BOrderUp, order_, [](double order) { return order + 1.0; });
  connect(ui_->Buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(ui_->Buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  ShowActiveTime();
}

TZelXferSetupF::~TZelXferSetupF() = default;

void TZelXferSetupF::ConnectStep(QAbstractButton& button, NumberField& field, Step step) {
  connect(&button, &QAbstractButton::clicked, this, [this, &field, step] {
    const auto value = field.Value();
    if (!value) return;
    double stepped = step(*value);
    if (&field == &order_) {
      stepped = std::clamp<double>(stepped, ZelXfer::MinOrder, analyser_.MaxOrder());
    }
    field.Show(stepped);
  });
}

std::optional<FftSetup> TZelXferSetupF::Typed(bool reporting) const {
  const auto read = [&](const NumberField& field) {
    return reporting ? field.CheckedValue() : field.Value();
  };
  FftSetup setup = analyser_.Setup();
  for (const Number& number : numbers_) {
    const auto value = read(number.Field);
    if (!value) return std::nullopt;
    setup.*number.Value = *value;
  }
  const auto order = read(order_);
  if (!order) return std::nullopt;
  const auto whole = WholeOrder(*order);
  if (!whole) {
    if (reporting) Error("FFT Order must be a whole number");
    return std::nullopt;
  }
  setup.Order = *whole;
  return setup;
}

void TZelXferSetupF::ShowActiveTime() {
  const auto setup = Typed(false);
  const bool known = setup && setup->TSample > 0.0 && setup->Order >= ZelXfer::MinOrder &&
                     setup->Order <= analyser_.MaxOrder();
  const QString share =
      known ? QString::number(setup->ActiveShare(), 'f', 1) + QLatin1Char('%') : QString(u'?');
  ui_->LActiveSampleTime->setText(QStringLiteral("(Active Sample Time = %1)").arg(share));
}

void TZelXferSetupF::accept() {
  const auto setup = Typed(true);
  if (!setup) return;
  const SetupFinding finding = analyser_.Check(*setup);
  switch (finding.What) {
    case SetupFinding::Kind::Refusal:
      Error(finding.Text);
      return;
    case SetupFinding::Kind::Warning:
      Warning(finding.Text);
      break;
    case SetupFinding::Kind::Note:
      Note(finding.Text);
      break;
    case SetupFinding::Kind::Nothing:
      break;
  }
  analyser_.Apply(*setup);
  QDialog::accept();
}

}  // namespace torvane
