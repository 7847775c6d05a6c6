#include "ui/panes/meter_window.h"

#include <QCloseEvent>
#include <QSignalBlocker>
#include <cmath>

#include "core/scale_steps.h"
#include "core/text.h"
#include "plot/qt_text.h"
#include "ui/widgets/check.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/edit_binding.h"
#include "ui_meter.h"

namespace torvane {

namespace {

constexpr double ReadingSize = 1.5;  // of the text's
constexpr int HundredthDigits = 3;   // a step of the last of so many digits
constexpr int ThousandthDigits = 4;

struct MeterNumber {
  const char* Edit;
  void (ZelMeter::*Set)(double);
  double (ZelMeter::*Value)() const;
};
constexpr MeterNumber Numbers[] = {
    {"ETSample", &ZelMeter::SetTSample, &ZelMeter::TSample},
    {"ELpf", &ZelMeter::SetLpf, &ZelMeter::Lpf},
    {"EACHpf", &ZelMeter::SetAcHpf, &ZelMeter::AcHpf},
    {"EHarmonicFreq", &ZelMeter::SetHarmonicFreq, &ZelMeter::HarmonicFreq},
    {"ETWindow", &ZelMeter::SetTWindow, &ZelMeter::TWindow},
    {"EExcitationMag", &ZelMeter::SetExcitationMag, &ZelMeter::ExcitationMag},
    {"EExcitationOff", &ZelMeter::SetExcitationOff, &ZelMeter::ExcitationOff},
    {"EExcitationMult", &ZelMeter::SetExcitationMult, &ZelMeter::ExcitationMult},
};

// The frequency with its last of so many digits one up or down.
double Nudged(double hz, int digits, int direction) {
  const double scale = std::pow(10.0, digits - 1 - std::floor(std::log10(hz)));
  return (std::round(hz * scale) + direction) / scale;
}

void ShowText(QLineEdit& edit, const QString& text) {
  if (edit.text() != text) edit.setText(text);
}

// What the edit's text takes with the margins around it.
int WidthFor(const QLineEdit& edit, const QString& text) {
  constexpr int margins = 12;
  return edit.fontMetrics().horizontalAdvance(text) + margins;
}

void ShowChoice(QComboBox& list, const Variable* chosen) {
  const QSignalBlocker blocker(list);
  list.setCurrentIndex(chosen ? list.findText(QtText(chosen->Name())) : -1);
}

}  // namespace

MeterWindow::MeterWindow(ZelMeter& meter, const ZelBenchTop& bench)
    : InstrumentPane(meter), meter_(meter), ui_(std::make_unique<Ui::MeterWindow>()) {
  ui_->setupUi(this);
  setWindowIcon(QIcon(QStringLiteral(":/icons/meter.svg")));
  QFont reading = ui_->EValue->font();
  reading.setPointSizeF(ReadingSize * reading.pointSizeF());
  ui_->EValue->setFont(reading);
  for (QLineEdit* edit : {ui_->EValue, ui_->EHarmonicAngle}) {
    UseFixedDigits(*edit);
    edit->setMinimumWidth(WidthFor(*edit, QStringLiteral("-0.0000e-00")));
  }
  // They are only read: the plate of the reading alone tells itself from the window.
  for (QLineEdit* edit : {ui_->EUnits, ui_->EHarmonicAngle}) {
    QPalette palette = edit->palette();
    palette.setBrush(QPalette::Base, Qt::transparent);
    edit->setPalette(palette);
  }
  FillList(*ui_->CmBVariable, bench, &ZelMeter::SetVariable);
  FillList(*ui_->CmBCorrVar, bench, &ZelMeter::SetCorrVar);
  FillList(*ui_->CmBHarmonicXferVar, bench, &ZelMeter::SetHarmonicXferVar);
  BindNumbers();
  BindKinds();
  BindSteps();
  BindSwitch(*ui_->SBShowSetup, &ZelMeter::SetShowSetup);
  BindSwitch(*ui_->RBAC, &ZelMeter::SetAcCoupled);
  BindSwitch(*ui_->CBHarmonicXfer, &ZelMeter::SetHarmonicXfer);
  BindSwitch(*ui_->CBUseDB, &ZelMeter::SetUseDb);
  BindSwitch(*ui_->CBUseExcitation, &ZelMeter::SetUseExcitation);
  MeterWindow::SettingsChanged();
}

MeterWindow::~MeterWindow() = default;

void MeterWindow::FillList(QComboBox& list, const ZelBenchTop& bench, NameSetter choose) {
  for (const Variable* variable : bench.Variables()) {
    if (variable->Internal()) continue;
    list.addItem(QtText(variable->Name()));
    list.setItemData(list.count() - 1, QtText(variable->Description()), Qt::ToolTipRole);
  }
  connect(&list, &QComboBox::currentTextChanged, this,
          [this, choose](const QString& name) { (meter_.*choose)(name.toStdString()); });
}

// What a setter refuses it reports itself; nothing is limited.
void MeterWindow::BindNumbers() {
  const auto nothing = [](double, double) { return std::string(); };
  for (const MeterNumber& number : Numbers) {
    auto* edit = findChild<QLineEdit*>(QLatin1String(number.Edit));
    edits_.push_back(BindNumber(
        *edit, [this, set = number.Set](double value) { (meter_.*set)(value); },
        [this, get = number.Value] { return (meter_.*get)(); }, nothing));
  }
}

void MeterWindow::BindSwitch(QAbstractButton& button, Switch set) {
  connect(&button, &QAbstractButton::toggled, this, [this, set](bool on) { (meter_.*set)(on); });
}

// In the order of MeterKind.
std::array<QAbstractButton*, MeterKinds.size()> MeterWindow::KindButtons() const {
  return {ui_->RBRMS, ui_->RBAverage, ui_->RBHarmonic, ui_->RBCorr};
}

void MeterWindow::BindKinds() {
  int kind = 0;
  for (QAbstractButton* button : KindButtons()) {
    connect(button, &QAbstractButton::clicked, this,
            [this, of = static_cast<MeterKind>(kind)] { meter_.SetKind(of); });
    ++kind;
  }
}

void MeterWindow::BindSteps() {
  const auto bind = [this](QAbstractButton& button, auto stepped) {
    connect(&button, &QAbstractButton::clicked, this,
            [this, stepped] { meter_.SetHarmonicFreq(stepped(meter_.HarmonicFreq())); });
  };
  bind(*ui_->BHarmDown, [](double hz) { return NextLowestThisArray(hz, CoarseLadder()); });
  bind(*ui_->BHarmUp, [](double hz) { return NextHighestThisArray(hz, CoarseLadder()); });
  bind(*ui_->BHarmNudgeDown, [](double hz) { return Nudged(hz, HundredthDigits, -1); });
  bind(*ui_->BHarmNudgeUp, [](double hz) { return Nudged(hz, HundredthDigits, 1); });
  bind(*ui_->BHarmDinkyNudgeDown, [](double hz) { return Nudged(hz, ThousandthDigits, -1); });
  bind(*ui_->BHarmDinkyNudgeUp, [](double hz) { return Nudged(hz, ThousandthDigits, 1); });
}

// A reading that changes with every frame could not be read: it is shown at the refresh.
void MeterWindow::Redraw() {
  ShowText(*ui_->EValue, QtText(meter_.ValueText()));
  ShowSettling();
  if (meter_.Measurement() != MeterKind::Harmonic) return;
  ShowText(*ui_->EHarmonicAngle, QString::number(meter_.AngleDeg(), 'f', 2));
}

void MeterWindow::SettingsChanged() {
  for (EditBinding* edit : edits_) edit->Show();
  ShowChoice(*ui_->CmBVariable, meter_.Measured());
  ShowChoice(*ui_->CmBCorrVar, meter_.CorrVar());
  ShowChoice(*ui_->CmBHarmonicXferVar, meter_.HarmonicXferVar());
  Check(meter_.AcCoupled() ? *ui_->RBAC : *ui_->RBDC, true);
  Check(*ui_->CBHarmonicXfer, meter_.HarmonicXfer());
  Check(*ui_->CBUseDB, meter_.UseDb());
  Check(*ui_->CBUseExcitation, meter_.UseExcitation());
  ui_->CmBHarmonicXferVar->setEnabled(meter_.HarmonicXfer());
  ui_->CBUseDB->setEnabled(meter_.HarmonicXfer());
  if (meter_.Measured()) setWindowTitle(QtText(meter_.Measured()->Name()));
  ShowText(*ui_->EUnits, QtText(meter_.UnitText()));
  ui_->EUnits->setFixedWidth(WidthFor(*ui_->EUnits, ui_->EUnits->text()));
  ShowKind();
  ShowSetup();
  Redraw();
}

void MeterWindow::ShowKind() {
  const MeterKind kind = meter_.Measurement();
  Check(*KindButtons()[static_cast<std::size_t>(kind)], true);
  ui_->CmBCorrVar->setEnabled(kind == MeterKind::Correlation);
  ui_->LHarmonicFreq->setText(QtText(FormatEdit(meter_.HarmonicFreq())));
  ui_->EHarmonicAngle->setVisible(kind == MeterKind::Harmonic);
  ui_->LDeg->setVisible(kind == MeterKind::Harmonic);
}

void MeterWindow::ShowSettling() {
  const bool settled = meter_.IsSettled();
  QString text = KindText();
  if (!settled) {
    text += QStringLiteral(", not settled below %1 Hz").arg(QtText(meter_.SettledFromText()));
  }
  if (ui_->LKind->text() == text) return;
  ui_->LKind->setText(text);
  ui_->LKind->setToolTip(
      settled ? QStringLiteral("What the meter measures")
              : QStringLiteral(
                    "The reading swings with the signal, and its middle is shown as "
                    "far as it stands: a lower Low-Pass Filter, in the set-up, holds it still"));
}

QString MeterWindow::KindText() const {
  const auto name = [](const Variable* variable) {
    return variable ? QtText(variable->Name()) : QString();
  };
  const QString coupling = meter_.AcCoupled() ? QStringLiteral(", AC") : QString();
  const MeterKind kind = meter_.Measurement();
  if (kind == MeterKind::Harmonic) {
    QString text = QtText(FormatEdit(meter_.HarmonicFreq())) + QStringLiteral(" Hz");
    if (meter_.HarmonicXfer()) text += QStringLiteral(" from ") + name(meter_.HarmonicXferVar());
    return text + coupling;
  }
  QString text = QString::fromLatin1(NamesOf(kind).Caption);
  if (kind == MeterKind::Correlation) text += QStringLiteral(" with ") + name(meter_.CorrVar());
  return text + coupling;
}

void MeterWindow::ShowSetup() {
  Check(*ui_->SBShowSetup, meter_.ShowSetup());
  if (ui_->PCSetup->isVisibleTo(this) == meter_.ShowSetup()) return;
  ui_->PCSetup->setVisible(meter_.ShowSetup());
  emit HeightChanged();
}

void MeterWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  emit Closed();
}

}  // namespace torvane
