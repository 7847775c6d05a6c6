#include "ui/desk/control_panel.h"

#include <QClipboard>
#include <QDateTime>
#include <QDragEnterEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <utility>

#include "core/messages.h"
#include "core/text.h"
#include "loops/loop_file.h"
#include "models/catalogue.h"
#include "plot/qt_text.h"
#include "ui/desk/arrangement.h"
#include "ui/desk/experiments_menu.h"
#include "ui/desk/file_commands.h"
#include "ui/desk/loop_commands.h"
#include "ui/desk/model_list.h"
#include "ui/desk/view_menu.h"
#include "ui/desk/window_menu.h"
#include "ui/panes/analyser/analyser_window.h"
#include "ui/panes/diagram/diagram_view.h"
#include "ui/panes/guide_window.h"
#include "ui/panes/instrument_windows.h"
#include "ui/panes/meter_window.h"
#include "ui/panes/model_views.h"
#include "ui/panes/poles/poles_panel.h"
#include "ui/panes/read_out_window.h"
#include "ui/panes/tune/tune_window.h"
#include "ui/session/box_queue.h"
#include "ui/session/live_theory.h"
#include "ui/widgets/control_help.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/held_gestures.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/wheel_guard.h"
#include "ui_control_panel.h"

// Resources of a static library are linked in only when they are asked for, outside any namespace.
static void InitIcons() {
  Q_INIT_RESOURCE(torvane_icons);
}

namespace torvane {

namespace {

constexpr int RefreshMilliseconds = 100;
constexpr int TitleTicks = 20;
constexpr int BesideGuide = 860;           // width that the guide leaves the instruments, pixels
constexpr int BesideGuideAndPanel = 1010;  // that they keep beside the guide and an experiment

}  // namespace

ControlPanel::ControlPanel(DataFolder folder, const std::string& startModel, Windows windows)
    : ui_(std::make_unique<Ui::ControlPanel>()),
      data_(std::move(folder)),
      shelf_(data_),
      theory_(std::make_unique<LiveTheory>(session_)),
      driver_(this),
      windows_(windows),
      picture_(new ModelPictureWindow(*this)),
      text_(new ModelTextWindow(this)) {
  InitIcons();
  ui_->setupUi(this);
  setAcceptDrops(true);
  GuardAgainstWheel(*this);
  HelpWithControls(*this, [this] { ShowGuide(); });
  new HeldGestures(this, [this] { return Model() ? &Model()->Bench().History() : nullptr; });
  files_ = std::make_unique<FileCommands>(*this, *ui_->MRecent, session_, data_);
  AddLoops();
  QMainWindow& dock = MakeDockAround(*ui_->InstrumentArea);
  experiments_ =
      new ExperimentsMenu(*ui_->MExperiments, session_, *files_, data_, *ui_->InstrumentArea, dock);
  connect(experiments_, &ExperimentsMenu::AboutToBegin, this, [this] {
    RememberWindows();
    if (guide_ && !guide_->isFloating() && ui_->InstrumentArea->width() < BesideGuideAndPanel)
      guide_->hide();
  });
  new WindowMenu(*ui_->MWindow, *ui_->InstrumentArea);
  view_ = new ViewMenu(
      *ui_->MView, windows_ == Windows::AsLeft ? ViewMenu::Memory::Kept : ViewMenu::Memory::None);
  connect(view_, &ViewMenu::LookChanged, this, &ControlPanel::ShowLook);
  AddKeyboard();
  poles_ = new PolesPanel(session_, *theory_, dock);
  poles_->AddTo(*ui_->MView);
  UseFixedDigits(*ui_->LTime);
  // Of one size, so that a new time does not have the whole strip laid out anew.
  ui_->LTime->setFixedSize(ui_->LTime->sizeHint().expandedTo(
      {ui_->LTime->fontMetrics().horizontalAdvance(QStringLiteral("-0.00000e+000")), 0}));
  ConnectSession();
  ConnectControls();
  const std::string& first = session_.Models().Entries().front().Name;
  if (!session_.Choose(startModel.empty() ? first : startModel))
    FatalError("Fault in TZelControlPanelF :: FormCreate");
  refreshTimer_.setObjectName(QStringLiteral("Timer1"));
  connect(&refreshTimer_, &QTimer::timeout, this, &ControlPanel::RefreshTick);
  refreshTimer_.start(RefreshMilliseconds);
}

ControlPanel::~ControlPanel() {
  // The program may end with its window open. What panes tell as they are hidden is heard here.
  hide();
  LeaveModel();
}

void ControlPanel::LeaveModel() {
  Stop();
  driver_.Leave();
  picture_->SetModel(nullptr, data_, session_.IsApplying());
  ui_->InstrumentArea->CloseAll();
  if (Model()) Model()->Bench().History().Attach(nullptr);
}

void ControlPanel::ShowModel() {
  ZelModel& model = *Model();
  if (windows_ == Windows::AsLeft) arrangement::RecallPlaces(model.Bench());
  auto panes = MakeInstrumentPanes(model.Bench());
  for (const auto& pane : panes) {
    if (const auto* analyser = qobject_cast<AnalyserWindow*>(pane.get())) {
      connect(analyser, &AnalyserWindow::MeasurementBegun, this, [this] {
        if (!Running()) ShowNotice(*ui_->SBRun, QStringLiteral("The measurement waits for Run"));
      });
      connect(analyser, &AnalyserWindow::PutAway, ui_->InstrumentArea,
              [this, analyser] { ui_->InstrumentArea->SetShown(analyser->Engine(), false); });
      connect(analyser, &AnalyserWindow::NeedsChanged, ui_->InstrumentArea,
              &Workspace::FollowNeeds);
    }
    WatchMeter(*pane);
  }
  ui_->InstrumentArea->Open(std::move(panes));
  ShowLook();
  if (windows_ == Windows::AsLeft) arrangement::RecallHidden(*ui_->InstrumentArea);
  model.PrepareCapture();
  ui_->BShowModelTXT->setVisible(!model.TextFile().empty());
  model.Bench().History().Attach(this);
  picture_->SetModel(&model, data_, session_.IsApplying());
  ui_->MIDiagramPane->setEnabled(picture_->HasDiagram());
  ui_->SBShowModelBMP->setEnabled(session_.Loop() || !model.PictureFile().empty());
  if (session_.IsApplying()) {
    text_->Renew(QtText(session_.Loop()->Text));
  } else {
    text_->hide();
  }
  models_->ShowPresent();
  ShowTime();
  experiments_->ModelShown();
}

// Whether something is unsaved takes a model file's text to tell: at once when a change tells of
// itself, now and then for what does not.
void ControlPanel::ShowTitle() {
  titleTicks_ = 0;
  const QString title = session_.Title();
  if (windowTitle() != title) setWindowTitle(title);
}

void ControlPanel::Run() {
  if (!Running()) ui_->SBRun->click();
}

void ControlPanel::Stop() {
  ui_->SBStop->setChecked(true);
}

bool ControlPanel::Running() const {
  return ui_->SBRun->isChecked();
}

void ControlPanel::RunToggled(bool down) {
  ui_->MIRunStop->setText(down ? QStringLiteral("Stop") : QStringLiteral("Run"));
  experiments_->SetRunning(down);
  for (InstrumentFrame* frame : ui_->InstrumentArea->Frames()) frame->Pane().SetRunning(down);
  // Text that can be selected takes long to set, and nobody selects it while it changes.
  ui_->LTime->setTextInteractionFlags(down ? Qt::NoTextInteraction : Qt::TextSelectableByMouse);
  if (!Model()) return;
  if (down) {
    driver_.Start(*Model());
  } else {
    driver_.Stop();
    ShowFrame();
  }
}

void ControlPanel::ShowFrame() {
  ++frames_;
  ShowTime();
  for (InstrumentFrame* frame : ui_->InstrumentArea->Frames()) frame->Pane().ShowFrame();
}

void ControlPanel::ShowTime() {
  const QString time = QString::fromStdString(FormatGeneral(Model()->Time(), 6, 2));
  if (ui_->LTime->text() != time) ui_->LTime->setText(time);
}

void ControlPanel::RefreshTick() {
  if (!Model()) return;
  models_->ShowPresent();
  if (++titleTicks_ >= TitleTicks) ShowTitle();
  Model()->Bench().RefreshInstruments();
  picture_->Diagram().Refresh();
  experiments_->Refresh();
  if (tune_) tune_->Refresh();
}

void ControlPanel::ShowLook() {
  for (InstrumentFrame* frame : ui_->InstrumentArea->Frames()) {
    frame->Pane().SetLook(view_->Look());
  }
  picture_->Diagram().SetLook(view_->Look());
  poles_->SetLook(view_->Look());
}

void ControlPanel::AddMeter() {
  AddMeterOf({});
}

// Without a signal, of the first one.
void ControlPanel::AddMeterOf(const QString& signal) {
  const QString now = QDateTime::currentDateTime().toString(Qt::ISODate);
  ZelMeter* meter = torvane::AddMeter(*Model(), "Meter from Main Menu " + now.toStdString());
  if (!meter) return;
  if (!signal.isEmpty()) meter->SetVariable(signal.toStdString());
  ShowNewMeters();
}

void ControlPanel::ShowNewMeters() {
  ZelBenchTop& bench = Model()->Bench();
  for (Instrument* meter : bench.Instruments(InstrumentKind::Meter)) {
    if (meter->View()) continue;
    auto pane = MakeInstrumentPane(*meter, bench);
    WatchMeter(*pane);
    ui_->InstrumentArea->Add(std::move(pane));
  }
}

// The window has to be through with its event before it goes.
void ControlPanel::WatchMeter(InstrumentPane& pane) {
  auto* window = qobject_cast<MeterWindow*>(&pane);
  if (!window) return;
  const QPointer<MeterWindow> watched(window);
  connect(window, &MeterWindow::Closed, this, [this, watched] {
    WhenNothingIsOpen(*this, [this, watched] {
      if (!watched) return;
      const ZelMeter& meter = watched->Meter();
      ui_->InstrumentArea->Remove(meter);
      Model()->Disown(meter);
    });
  });
  connect(
      window, &MeterWindow::HeightChanged, this,
      [this, watched] {
        if (watched) ui_->InstrumentArea->FitHeight(watched->Meter());
      },
      Qt::QueuedConnection);
}

void ControlPanel::ShowLoaded() {
  ShowNewMeters();
  ui_->InstrumentArea->RestorePlacements();
  for (InstrumentFrame* frame : ui_->InstrumentArea->Frames()) frame->Pane().FileLoaded();
}

void ControlPanel::CopyCapture(const QSize& proportions) {
  const QImage picture = ui_->InstrumentArea->Capture(proportions);
  QGuiApplication::clipboard()->setImage(picture);
  ShowNotice(*ui_->SBRun, QStringLiteral("A picture of the instruments is on the clipboard: "
                                         "%1 x %2 pixels")
                              .arg(picture.width())
                              .arg(picture.height()));
}

void ControlPanel::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (urls.size() == 1 && urls.first().isLocalFile()) event->acceptProposedAction();
}

// Loading may ask a question, and the source of the drag waits for the end of the drop.
void ControlPanel::dropEvent(QDropEvent* event) {
  const QString path = event->mimeData()->urls().value(0).toLocalFile();
  event->acceptProposedAction();
  WhenNothingIsOpen(*this, [this, path] { session_.Open(path); });
}

void ControlPanel::ResetVariables() {
  Model()->Reset();
}

void ControlPanel::RestoreDefaults() {
  Model()->RestoreDefaults();
}

void ControlPanel::ShowTune() {
  const auto askFile = [this](const QString& name) { return files_->AskWhereToSave(name); };
  if (!tune_) tune_ = new TuneWindow(session_, askFile, this);
  tune_->Open();
}

void ControlPanel::ShowGuide() {
  if (!guide_) guide_ = new GuideWindow(data_, *this);
  guide_->Open(ui_->InstrumentArea->width() - BesideGuide);
}

void ControlPanel::ShowAbout() {
  QMessageBox box(this);
  box.setObjectName(QStringLiteral("AboutBox"));
  box.setWindowTitle(QStringLiteral("About Torvane"));
  box.setIconPixmap(windowIcon().pixmap(64));
  box.setText(QStringLiteral("<b>Torvane--Melkorin, 2nd Edition</b>"));
  box.setInformativeText(
      QStringLiteral("Version %1\n\nA simulator of feedback control systems: run a loop, change "
                     "its constants while it runs, and watch its signals.\n\n"
                     "Free software under the MIT licence.")
          .arg(QCoreApplication::applicationVersion()));
  box.exec();
}

// The simulation stands still while a box is open, whatever opened it.
bool ControlPanel::event(QEvent* event) {
  if (event->type() == QEvent::WindowBlocked) driver_.Pause();
  if (event->type() == QEvent::WindowUnblocked) driver_.Resume();
  return QMainWindow::event(event);
}

// A wheel turned over the model selector must not throw the running model away.
bool ControlPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->ModelCmB && event->type() == QEvent::Wheel) return true;
  return QMainWindow::eventFilter(watched, event);
}

void ControlPanel::SetCaption(UndoItem item, const std::string& caption) {
  titleTicks_ = TitleTicks;
  QString text = QString::fromStdString(caption);
  text.replace(u'&', QStringLiteral("&&"));
  if (item == UndoItem::UndoMenu) ui_->MIUndo->setText(text);
  if (item == UndoItem::RedoMenu) ui_->MIRedo->setText(text);
}

void ControlPanel::SetEnabled(UndoItem item, bool enabled) {
  switch (item) {
    case UndoItem::UndoMenu:
      ui_->MIUndo->setEnabled(enabled);
      break;
    case UndoItem::RedoMenu:
      ui_->MIRedo->setEnabled(enabled);
      break;
    case UndoItem::UndoButton:
      ui_->SBUndo->setEnabled(enabled);
      break;
    case UndoItem::RedoButton:
      ui_->SBRedo->setEnabled(enabled);
      break;
  }
}

}  // namespace torvane
