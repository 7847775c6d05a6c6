#include "ui/panes/wave_gen_window.h"

#include <QCloseEvent>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "core/scale_steps.h"
#include "ui/panes/play_file.h"
#include "ui/widgets/double_click.h"
#include "ui/widgets/edit_binding.h"
#include "ui/widgets/notice.h"
#include "ui_wave_gen.h"

namespace torvane {

namespace {

constexpr double PhaseStep = 45.0;  // degrees
constexpr double DutyStep = 10.0;   // per cent
constexpr int FlatRows = 3;
constexpr int Columns = 5;      // of widgets beside a number
constexpr int ColumnsGap = 20;  // between two columns of numbers, pixels

// A file stands behind the waveforms as long as it is played.
void ShowWaveform(QComboBox& list, const ZelWave& wave) {
  list.removeItem(ZelWave::WaveformCount);
  if (wave.Played()) list.addItem(QString::fromStdString(wave.Played()->Name()));
  list.setCurrentIndex(wave.Played() ? ZelWave::WaveformCount : wave.Settings().Index);
}

}  // namespace

WaveGenWindow::WaveGenWindow(ZelWave& wave) try
    : InstrumentPane(wave), wave_(wave), ui_(std::make_unique<Ui::WaveGenWindow>()) {
  ui_->setupUi(this);
  setWindowIcon(QIcon(QStringLiteral(":/icons/generator.svg")));
  if (wave.Name() != "MainWaveGen") setWindowTitle(QString::fromStdString(wave.Name()));
  for (const char* name : ZelWave::WaveformNames()) {
    ui_->CmBWaveform->addItem(QLatin1String(name));
  }
  new DoubleClick(*ui_->CmBWaveform, [this] {
    const int next = ui_->CmBWaveform->currentIndex() + 1;
    ui_->CmBWaveform->setCurrentIndex(next % ui_->CmBWaveform->count());
  });
  connect(ui_->CmBWaveform, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (index < ZelWave::WaveformCount) wave_.SetWaveform(index);
  });
  connect(
      ui_->BPlayFile, &QAbstractButton::clicked, this, [this] { PlayFile(wave_, *this); },
      Qt::QueuedConnection);
  for (const WaveNumber& number : ZelWave::Numbers()) Bind(number);
  ConnectButtons();
  SettingsChanged();
  wanted_ = InstrumentPane::sizeHint();
  least_ = InstrumentPane::minimumSizeHint();
  flatSize_ = NeededFlat();
} catch (const std::exception&) {
  Error("Fault in TZelWaveGenF :: TZelWaveGenF");
}

WaveGenWindow::~WaveGenWindow() = default;

// A number's edit is called after it.
void WaveGenWindow::Bind(const WaveNumber& number) {
  auto* edit = findChild<QLineEdit*>(QLatin1Char('E') + QLatin1String(number.Name));
  edits_.push_back(BindNumber(
      *edit, [this, number](double value) { (wave_.*number.Set)(value); },
      [this, number] { return wave_.Settings().*number.Value; }));
}

// What the button asks for goes beyond a limit at most.
void WaveGenWindow::BindButton(QAbstractButton* button, Number number, Change change) {
  const auto& numbers = ZelWave::Numbers();
  const auto found = std::find_if(numbers.begin(), numbers.end(),
                                  [&](const WaveNumber& n) { return n.Value == number; });
  connect(button, &QAbstractButton::clicked, this, [this, button, change, to = *found] {
    const double wanted = change(wave_.Settings());
    (wave_.*to.Set)(wanted);
    const double stored = wave_.Settings().*to.Value;
    if (stored == wanted) return;
    ShowNotice(*button, QString::fromStdString(LimitNotice(wanted, stored)));
  });
}

void WaveGenWindow::ConnectButtons() {
  using S = const WaveSettings&;
  const Number frequency = &WaveSettings::FreqHz;
  const Number amplitude = &WaveSettings::Amplitude;
  const Number offset = &WaveSettings::Offset;
  const Number phase = &WaveSettings::PhaseDeg;
  const Number duty = &WaveSettings::DutyCycle;
  BindButton(ui_->SBFreqDown, frequency,
             [](S s) { return NextLowestThisArray(s.FreqHz, CoarseLadder()); });
  BindButton(ui_->SBFreqUp, frequency,
             [](S s) { return NextHighestThisArray(s.FreqHz, CoarseLadder()); });
  BindButton(ui_->SBAmplitudeDown, amplitude,
             [](S s) { return NextLowestThisArray(s.Amplitude, CoarseLadder()); });
  BindButton(ui_->SBAmplitudeUp, amplitude,
             [](S s) { return NextHighestThisArray(s.Amplitude, CoarseLadder()); });
  BindButton(ui_->BAmpSign, amplitude, [](S s) { return -s.Amplitude; });
  BindButton(ui_->SBOffsetDown, offset, [](S s) { return s.Offset - std::abs(s.Amplitude); });
  BindButton(ui_->SBOffsetUp, offset, [](S s) { return s.Offset + std::abs(s.Amplitude); });
  BindButton(ui_->BOffsetSign, offset, [](S s) { return -s.Offset; });
  BindButton(ui_->SBPhaseDown, phase, [](S s) { return s.PhaseDeg - PhaseStep; });
  BindButton(ui_->SBPhaseUp, phase, [](S s) { return s.PhaseDeg + PhaseStep; });
  BindButton(ui_->BPhase, phase, [](S s) { return -s.PhaseDeg; });
  BindButton(ui_->SBDutyCycleDown, duty, [](S s) { return s.DutyCycle - DutyStep; });
  BindButton(ui_->SBDutyCycleUp, duty, [](S s) { return s.DutyCycle + DutyStep; });
}

void WaveGenWindow::SettingsChanged() {
  const QSignalBlocker blocker(ui_->CmBWaveform);
  ShowWaveform(*ui_->CmBWaveform, wave_);
  for (EditBinding* edit : edits_) edit->Show();
}

// Of a window with all in one column.
QSize WaveGenWindow::NeededFlat() const {
  const int fields = ui_->Fields->sizeHint().height() + ui_->Fields->verticalSpacing();
  return {2 * least_.width() + ColumnsGap, wanted_.height() - fields / 2};
}

QSize WaveGenWindow::minimumSizeHint() const {
  return flat_ ? QSize(least_.width(), FlatSize().height()) : least_;
}

void WaveGenWindow::SetFlat(bool flat) {
  if (flat_ == flat) return;
  flat_ = flat;
  QGridLayout& fields = *ui_->Fields;
  for (int row = 0; row < FlatRows; ++row) {
    for (int column = 0; column < Columns; ++column) {
      const QPoint below(column, row + FlatRows);
      const QPoint beside(column + Columns + 1, row);
      const QPoint from = flat ? below : beside;
      const QPoint to = flat ? beside : below;
      QLayoutItem* item = fields.itemAtPosition(from.y(), from.x());
      if (item) fields.addWidget(item->widget(), to.y(), to.x());
    }
  }
  fields.setColumnMinimumWidth(Columns, flat ? ColumnsGap : 0);
  fields.setColumnStretch(Columns + 2, flat ? 1 : 0);
  // Who makes the window narrow may leave it too low for one column.
  if (!flat) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          QWidget& frame = *parentWidget();
          frame.resize(frame.size().expandedTo(frame.minimumSizeHint()));
        },
        Qt::QueuedConnection);
  }
}

void WaveGenWindow::resizeEvent(QResizeEvent* event) {
  InstrumentPane::resizeEvent(event);
  SetFlat(width() >= FlatSize().width());
}

void WaveGenWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  Note("Waveform Generator cannot be closed.");
}

}  // namespace torvane
