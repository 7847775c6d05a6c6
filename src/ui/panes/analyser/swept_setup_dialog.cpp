#include "ui/panes/analyser/swept_setup_dialog.h"

#include <algorithm>

#include "core/text.h"
#include "ui/panes/analyser/setup_fields.h"
#include "ui_swept_setup.h"

namespace torvane {

SweptSetupDialog::SweptSetupDialog(ZelSweptDSA& analyser, QWidget* parent)
    : QDialog(parent),
      analyser_(analyser),
      ui_(std::make_unique<Ui::SweptSetupDialog>()),
      fields_(new SetupFields(*this, [this] { ShowExpected(); })) {
  ui_->setupUi(this);
  const SweepSetup setup = analyser.Setup();
  const auto fewer = [](double steps) { return std::max(steps - 5.0, 1.0); };
  const auto moreSteps = [](double steps) { return steps == 1.0 ? 5.0 : steps + 5.0; };
  fields_->AddStepped(*ui_->EtSample, setup.TSample, Less, More);
  fields_->AddStepped(*ui_->EStartFreq, setup.StartFreq, Less, More);
  fields_->AddStepped(*ui_->EEndFreq, setup.EndFreq, Less, More);
  fields_->AddStepped(*ui_->EStepsPerDecade, setup.StepsPerDecade, fewer, moreSteps);
  fields_->AddStepped(*ui_->ESettleTime, setup.SettleTime, LessOrNone, MoreThanNone);
  fields_->AddStepped(*ui_->EMeasurementTime, setup.MeasurementTime, LessOrNone, MoreThanNone);
  fields_->Add(*ui_->EAmplitude, setup.Amplitude);
  fields_->Add(*ui_->EOffset, setup.Offset);
  fields_->AddStepped(*ui_->EAverages, setup.Averages, FewerAverages, MoreAverages);
  connect(ui_->Buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(ui_->Buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  ShowExpected();
}

SweptSetupDialog::~SweptSetupDialog() = default;

std::optional<SweepSetup> SweptSetupDialog::Typed(bool reporting) const {
  const auto values = fields_->Values(reporting);
  if (!values) return std::nullopt;
  const std::vector<double>& v = *values;
  const auto steps = WholeNumber(v[3], "Steps/decade", reporting);
  const auto averages = WholeNumber(v[8], "Averages", reporting);
  if (!steps || !averages) return std::nullopt;
  return SweepSetup{v[0], v[1], v[2], *steps, v[4], v[5], v[6], v[7], *averages};
}

void SweptSetupDialog::ShowExpected() {
  const auto setup = Typed(false);
  const bool good = setup && analyser_.Check(*setup).What != SetupFinding::Kind::Refusal;
  if (!good) {
    ui_->LExpected->setText(QStringLiteral("(Expected points = ?)"));
    return;
  }
  const SweepPlan plan = PlanSweep(*setup, ZelSweptDSA::Capacity);
  ui_->LExpected->setText(QStringLiteral("(Expected points = %1, in %2 sec)")
                              .arg(plan.Points)
                              .arg(QString::fromStdString(FormatGeneral(plan.Seconds, 3, 1))));
}

void SweptSetupDialog::accept() {
  if (TakeSetup(analyser_, Typed(true))) QDialog::accept();
}

}  // namespace torvane
