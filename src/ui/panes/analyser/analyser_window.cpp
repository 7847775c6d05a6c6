#include "ui/panes/analyser/analyser_window.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QDialog>
#include <QMainWindow>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "core/text.h"
#include "core/undo.h"
#include "instruments/analyser/auto_find.h"
#include "instruments/analyser/shown_responses_csv.h"
#include "plot/qt_text.h"
#include "ui/panes/analyser/analyser_axes.h"
#include "ui/panes/analyser/margins_window.h"
#include "ui/panes/analyser/response_cursors.h"
#include "ui/panes/analyser/response_menu.h"
#include "ui/panes/analyser/response_view_menu.h"
#include "ui/widgets/check.h"
#include "ui/widgets/export_menu.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/swatch.h"
#include "ui_analyser.h"

namespace torvane {

namespace {

using CursorMode = FrequencyAnalyser::CursorMode;

constexpr int ComfortablePlot = 400;  // pixels of width that a panel beside it leaves

// To a whole number, below ten to one digit.
double Rounded(double seconds) {
  const double digit = std::pow(10.0, std::min(std::floor(std::log10(seconds)), 0.0));
  return digit < 1.0 ? std::round(seconds / digit) / std::round(1.0 / digit) : std::round(seconds);
}

}  // namespace

AnalyserWindow::AnalyserWindow(FrequencyAnalyser& analyser, ZelBenchTop& bench, const Names& names)
    : InstrumentPane(analyser), analyser_(analyser), ui_(std::make_unique<Ui::AnalyserForm>()) {
  setObjectName(QLatin1String(names.Window));
  ui_->setupUi(this);
  setWindowTitle(analyser.Name() == names.Analyser ? QLatin1String(names.Title)
                                                   : QString::fromStdString(analyser.Name()));
  setWindowIcon(QIcon(QStringLiteral(":/icons/analyser.svg")));
  ui_->PBPlot->SetAnalyser(analyser);
  axes_ = new AnalyserAxes(*ui_, analyser, this);
  menu_ = new ResponseMenu(analyser, bench, MakeExports(bench, names.File), this);
  viewMenu_ = new ResponseViewMenu(analyser, this);
  menu_->Menu().addMenu(&viewMenu_->Menu());
  ui_->SBView->setMenu(&viewMenu_->Menu());
  cursors_ = new ResponseCursors(analyser, names.Cursors, this);
  margins_ = new MarginsWindow(analyser, this);
  dock_ = &MakeDockAround(*ui_->PBPlot);
  for (const QDockWidget* panel :
       {static_cast<QDockWidget*>(cursors_), static_cast<QDockWidget*>(margins_)}) {
    connect(panel, &QDockWidget::dockLocationChanged, this, &AnalyserWindow::FitPlot);
    connect(panel, &QDockWidget::topLevelChanged, this, &AnalyserWindow::FitPlot);
  }
  ConnectRun();
  ConnectSignals();
  ConnectTraces();
  ConnectCursors(bench.History());
  ConnectFolding();
  SettingsChanged();
  ArrangeRows();  // tells how narrow the window may be
}

AnalyserWindow::~AnalyserWindow() = default;

QMenu& AnalyserWindow::MakeExports(const ZelBenchTop& bench, const char* file) {
  const QString model = QString::fromStdString(bench.ModelName());
  auto* exports = new ExportMenu(
      *ui_->PBPlot, {QStringLiteral("%1 - %2").arg(model, windowTitle()), QLatin1String(file),
                     [this] { return ResponsePicture(analyser_, ui_->PBPlot->Look()); },
                     [this] { return ShownResponsesCsv(analyser_); }});
  // The plot has a larger menu, of which this one is a part.
  ui_->PBPlot->setContextMenuPolicy(Qt::DefaultContextMenu);
  return *exports;
}

void AnalyserWindow::ConnectRun() {
  connect(ui_->SBRun, &QAbstractButton::clicked, this, [this](bool down) {
    if (down) {
      analyser_.Run();
      if (analyser_.Measuring()) emit MeasurementBegun();
    } else {
      analyser_.Halt();
    }
  });
  connect(ui_->SBSetup, &QAbstractButton::clicked, this, [this] { OpenSetup(); });
  connect(ui_->LFreqAuto, &QAbstractButton::clicked, this, [this] { AutoRange(); });
}

void AnalyserWindow::OpenSetup() try {
  QDialog* dialog = MakeSetup();
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
} catch (const std::exception&) {
  Error("Fault in " + objectName().toStdString() + " :: SBSetupClick");
}

void AnalyserWindow::ConnectSignals() {
  for (const auto& channel : analyser_.Channels()) {
    for (QComboBox* list : {ui_->CmBInput, ui_->CmBOutput}) {
      list->addItem(QString::fromStdString(channel->Label()),
                    QString::fromStdString(channel->Name()));
    }
  }
  for (QComboBox* list : {ui_->CmBInput, ui_->CmBOutput}) {
    list->view()->setMinimumWidth(list->view()->sizeHintForColumn(0) + 24);
  }
  const auto chosen = [](const QComboBox& list) {
    return list.currentData().toString().toStdString();
  };
  connect(ui_->CmBInput, &QComboBox::activated, this,
          [=, this] { analyser_.SetInput(chosen(*ui_->CmBInput)); });
  connect(ui_->CmBOutput, &QComboBox::activated, this,
          [=, this] { analyser_.SetOutput(chosen(*ui_->CmBOutput)); });
  for (std::size_t i = 0; i < setups_.size(); ++i) {
    setups_[i] = findChild<QToolButton*>(QStringLiteral("SBButton%1").arg(i + 1));
    setups_[i]->setVisible(i < analyser_.Setups().size());
    if (i >= analyser_.Setups().size()) continue;
    const AnalyserSetup& setup = analyser_.Setups()[i];
    setups_[i]->setText(QString::fromStdString(setup.Name));
    setups_[i]->setToolTip(QString::fromStdString("Measure " + setup.Output + " / " + setup.Input));
    connect(setups_[i], &QAbstractButton::clicked, this, [this, i] {
      analyser_.SelectSetup(static_cast<int>(i));
      ShowSignals();  // a second press of one that is down
    });
  }
}

void AnalyserWindow::ConnectTraces() {
  traces_ = {ui_->CBColorCurrent, ui_->CBColor1, ui_->CBColor2, ui_->CBColor3, ui_->CBColor4};
  for (int slot = 0; QCheckBox * trace : traces_) {
    connect(trace, &QAbstractButton::clicked, this, [this, slot](bool on) { ShowTrace(slot, on); });
    ++slot;
  }
  connect(ui_->PBPlot, &ResponsePaintBox::ColoursChanged, this, &AnalyserWindow::ShowSwatches);
  ShowSwatches();
  ui_->SBMemory->setMenu(&menu_->Menu());
  connect(ui_->PBPlot, &ResponsePaintBox::MenuAsked, this,
          [this](const QPoint& at) { menu_->Menu().popup(at); });
  connect(menu_, &ResponseMenu::CursorTraceChosen, this, &AnalyserWindow::ChooseCursorTrace);
  connect(cursors_, &ResponseCursors::TraceChosen, this, &AnalyserWindow::ChooseCursorTrace);
}

// As in the plot's legend.
void AnalyserWindow::ShowSwatches() {
  const ScopeColours colours = ui_->PBPlot->Colours();
  for (int slot = 0; QCheckBox * trace : traces_) trace->setIcon(Swatch(colours.Trace(slot++)));
}

void AnalyserWindow::SetLook(const TraceLook& look) {
  ui_->PBPlot->SetLook(look);
}

void AnalyserWindow::ConnectCursors(ZelUndo& history) {
  const std::array modes = {ui_->SBNoCursors, ui_->SBOneCursor, ui_->SBTwoCursors};
  for (int mode = 0; QAbstractButton * button : modes) {
    connect(button, &QAbstractButton::clicked, this,
            [this, mode] { analyser_.SetCursors(static_cast<CursorMode>(mode)); });
    ++mode;
  }
  connect(ui_->PBPlot, &ResponsePaintBox::GestureBegun, this, [&] { history.BeginGesture(); });
  connect(ui_->PBPlot, &ResponsePaintBox::GestureEnded, this, [&] { history.EndGesture(); });
  connect(ui_->CmBFindType->lineEdit(), &QLineEdit::editingFinished, this,
          [this] { analyser_.SetFindType(ui_->CmBFindType->currentText().toStdString()); });
  connect(ui_->CmBFindType, &QComboBox::activated, this,
          [this] { analyser_.SetFindType(ui_->CmBFindType->currentText().toStdString()); });
  connect(ui_->CmBFindType->lineEdit(), &QLineEdit::returnPressed, this, &AnalyserWindow::Find);
  connect(ui_->SBFind, &QAbstractButton::clicked, this, &AnalyserWindow::Find);
  connect(ui_->SBMargins, &QAbstractButton::toggled, this, &AnalyserWindow::ShowMargins);
  connect(margins_, &MarginsWindow::Closed, this, [this] { ui_->SBMargins->setChecked(false); });
}

void AnalyserWindow::ShowMargins() {
  const bool shown = ui_->SBMargins->isChecked() && isVisible();
  if (shown) margins_->ReadTrace();
  ui_->PBPlot->SetMarks(shown ? margins_->Marks() : std::vector<ResponseMark>());
  shown ? margins_->OpenIn(*dock_, ComfortablePlot) : margins_->hide();
  FitPlot();
}

void AnalyserWindow::Find() {
  analyser_.SetFindType(ui_->CmBFindType->currentText().toStdString());
  if (analyser_.Cursors() == CursorMode::None) {
    ShowNotice(*ui_->SBFind, QStringLiteral("A search moves cursor 1: switch a cursor on"));
    return;
  }
  const std::optional<int> found = AutoFind(analyser_, ui_->PBPlot->PlotWidth());
  if (found) analyser_.SetCursorPixel(0, *found);
}

void AnalyserWindow::ShowTrace(int slot, bool shown) {
  analyser_.SetShown(slot, shown);
  if (!shown && slot == analyser_.CursorSlot() && analyser_.Cursors() != CursorMode::None) {
    Note("Turning off cursor waveform");
  }
}

void AnalyserWindow::ChooseCursorTrace(int slot) {
  if (analyser_.TraceAt(slot).Shown) {
    analyser_.SetCursorSlot(slot);
  } else {
    Note("Cursor waveform is not showing");
  }
  ShowCursors();
}

void AnalyserWindow::ShowSignals() {
  const auto choose = [](QComboBox& list, const AnalyserChannel* channel) {
    if (channel) list.setCurrentIndex(list.findData(QString::fromStdString(channel->Name())));
  };
  choose(*ui_->CmBInput, analyser_.Input());
  choose(*ui_->CmBOutput, analyser_.Output());
  ui_->CmBInput->setEnabled(!analyser_.OutputOnly());
  for (std::size_t i = 0; i < analyser_.Setups().size(); ++i) {
    Check(*setups_[i], analyser_.CurrentSetup() == static_cast<int>(i));
  }
}

void AnalyserWindow::ShowTraces() {
  for (int slot = 0; QCheckBox * box : traces_) {
    const FrequencyAnalyser::Trace& trace = analyser_.TraceAt(slot++);
    box->setEnabled(trace.Enabled);
    Check(*box, trace.Shown);
  }
  ui_->SBMemory->setEnabled(!analyser_.OutputOnly());
  menu_->Show();
}

// The scales are those of the plot; what it does not have cannot be set.
void AnalyserWindow::ShowView() {
  viewMenu_->Show();
  const ResponsePlot plot = analyser_.View().Plot;
  const bool nyquist = plot == ResponsePlot::Nyquist;
  ui_->PageGain->setVisible(!nyquist);
  ui_->PagePhase->setVisible(!nyquist);
  ui_->Pages->setCurrentWidget(nyquist                       ? ui_->NyquistPage
                               : ui_->PagePhase->isChecked() ? ui_->PhasePage
                                                             : ui_->GainPage);
  ui_->PhasePage->setEnabled(plot == ResponsePlot::Nichols || !analyser_.ShowsDelay());
}

void AnalyserWindow::ShowCursors() {
  const std::array modes = {ui_->SBNoCursors, ui_->SBOneCursor, ui_->SBTwoCursors};
  Check(*modes[static_cast<std::size_t>(analyser_.Cursors())], true);
  ui_->PBPlot->update();
  const bool shown = analyser_.Cursors() != CursorMode::None && isVisible();
  if (shown) cursors_->ShowReading(ui_->PBPlot->PlotWidth());
  shown ? cursors_->OpenIn(*dock_, ComfortablePlot) : cursors_->hide();
  FitPlot();
}

void AnalyserWindow::ShowWarnings() {
  QStringList warnings;
  for (const std::string& warning : analyser_.Warnings()) {
    warnings << QString::fromStdString(warning);
  }
  for (const std::string& doubt : analyser_.ShownDoubts()) {
    warnings << QString::fromStdString(doubt);
  }
  ui_->LWarning->setText(warnings.join(QLatin1Char(' ')));
  ui_->LWarning->setVisible(!warnings.isEmpty());
}

void AnalyserWindow::ShowProgress() {
  const int percent = static_cast<int>(100.0 * analyser_.Progress());
  if (ui_->PBDataCollect->value() != percent) ui_->PBDataCollect->setValue(percent);
  const QString text = ProgressText();
  if (ui_->PBDataCollect->format() != text) ui_->PBDataCollect->setFormat(text);
}

void AnalyserWindow::SettingsChanged() {
  Check(*ui_->SBRun, analyser_.Measuring());
  ShowWarnings();
  ShowSignals();
  ShowTraces();
  ShowView();
  {
    const QSignalBlocker blocker(ui_->CmBFindType);
    ui_->CmBFindType->setCurrentText(QString::fromStdString(analyser_.FindType()));
  }
  ShowFrame();
  axes_->Show();
  ShowCursors();
  if (margins_->isVisible()) ShowMargins();
}

void AnalyserWindow::ShowFrame() {
  ShowProgress();
  ui_->PBPlot->SetEmptyText(EmptyText());
  if (ui_->PBPlot->Refresh() && margins_->isVisible()) ShowMargins();
}

void AnalyserWindow::SetRunning(bool running) {
  running_ = running;
  ShowFrame();
}

// What to press where nothing has been measured yet.
QString AnalyserWindow::EmptyText() const {
  const bool measuring = analyser_.Measuring();
  bool anything = (measuring && running_) || !analyser_.Input() || !analyser_.Output();
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    anything = anything || analyser_.HasData(slot);
  }
  if (anything) return {};
  if (measuring) return QStringLiteral("Waits for the simulation: Run at the top (Ctrl+R)");
  const auto name = [](const AnalyserChannel& channel) { return QtText(channel.Name()); };
  QString what = name(*analyser_.Output());
  if (!analyser_.OutputOnly()) what += QStringLiteral(" over ") + name(*analyser_.Input());
  return QStringLiteral("Run measures %1: about %2 s of simulated time")
      .arg(what, QtText(FormatShortest(Rounded(analyser_.ExpectedSeconds()))));
}

void AnalyserWindow::Redraw() {
  ShowFrame();
  if (cursors_->isVisible()) cursors_->ShowReading(ui_->PBPlot->PlotWidth());
}

void AnalyserWindow::ShownChanged(bool shown) {
  analyser_.SetVisible(shown);
}

void AnalyserWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  emit PutAway();
}

void AnalyserWindow::hideEvent(QHideEvent* event) {
  InstrumentPane::hideEvent(event);
  if (event->spontaneous()) return;
  cursors_->hide();
  margins_->hide();
}

void AnalyserWindow::showEvent(QShowEvent* event) {
  InstrumentPane::showEvent(event);
  ArrangeRows();
  ShowFrame();
  axes_->Show();
  ShowCursors();
  ShowMargins();
}

}  // namespace torvane
