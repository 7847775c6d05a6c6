#include "ui/panes/analyser/xfer_setup_dialog.h"

#include <algorithm>

#include "ui/panes/analyser/setup_fields.h"
#include "ui_xfer_setup.h"

namespace torvane {

XferSetupDialog::XferSetupDialog(ZelXfer& analyser, QWidget* parent)
    : QDialog(parent),
      analyser_(analyser),
      ui_(std::make_unique<Ui::XferSetupDialog>()),
      fields_(new SetupFields(*this, [this] { ShowActiveTime(); })) {
  ui_->setupUi(this);
  const FftSetup setup = analyser.Setup();
  const int most = analyser.MaxOrder();
  const auto less = [](double order) { return std::max<double>(order - 1, ZelXfer::MinOrder); };
  const auto more = [=](double order) { return std::min<double>(order + 1, most); };
  fields_->AddStepped(*ui_->EtSample, setup.TSample, Less, More);
  fields_->AddStepped(*ui_->EOrder, setup.Order, less, more);
  fields_->AddStepped(*ui_->EtStartDelay, setup.TStartDelay, LessOrNone, MoreThanNone);
  fields_->AddStepped(*ui_->EtEndDelay, setup.TEndDelay, LessOrNone, MoreThanNone);
  fields_->Add(*ui_->EAmplitude, setup.Amplitude);
  fields_->Add(*ui_->EOffset, setup.Offset);
  fields_->AddStepped(*ui_->EAverages, setup.Averages, FewerAverages, MoreAverages);
  connect(ui_->Buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(ui_->Buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  ShowActiveTime();
}

XferSetupDialog::~XferSetupDialog() = default;

std::optional<FftSetup> XferSetupDialog::Typed(bool reporting) const {
  const auto values = fields_->Values(reporting);
  if (!values) return std::nullopt;
  const std::vector<double>& v = *values;
  const auto order = WholeNumber(v[1], "FFT Order", reporting);
  const auto averages = WholeNumber(v[6], "Averages", reporting);
  if (!order || !averages) return std::nullopt;
  return FftSetup{v[0], *order, v[2], v[3], v[4], v[5], *averages};
}

void XferSetupDialog::ShowActiveTime() {
  const auto setup = Typed(false);
  const bool known = setup && setup->TSample > 0.0 && setup->Order >= ZelXfer::MinOrder &&
                     setup->Order <= analyser_.MaxOrder();
  const QString share = known ? QString::number(setup->ActiveShare(), 'f', 1) + QLatin1Char('%')
                              : QStringLiteral("?");
  ui_->LActiveSampleTime->setText(QStringLiteral("(Active Sample Time = %1)").arg(share));
}

void XferSetupDialog::accept() {
  if (TakeSetup(analyser_, Typed(true))) QDialog::accept();
}

}  // namespace torvane
