#include "ui/desk/control_panel.h"

#include <QClipboard>
#include <QDateTime>
#include <QDragEnterEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QShortcut>
#include <QWhatsThis>
#include <tuple>
#include <utility>

#include "core/messages.h"
#include "core/text.h"
#include "loops/loop_file.h"
#include "models/catalogue.h"
#include "plot/qt_text.h"
#include "ui/desk/arrangement.h"
#include "ui/desk/experiments_menu.h"
#include "ui/desk/file_commands.h"
#include "ui/desk/loop_change_bar.h"
#include "ui/desk/loop_commands.h"
#include "ui/desk/model_list.h"
#include "ui/desk/pane_keys.h"
#include "ui/desk/strip_menus.h"
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
#include "ui/session/last_session.h"
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
struct Pace {
  const char* Label;
  double Simulated;  // seconds for each real one
};
constexpr Pace Paces[] = {
    {"Fastest", RunDriver::Unlimited}, {"Real time", 1.0}, {"1/10", 0.1}, {"1/100", 0.01}};
constexpr int BesideGuide = 860;           // width that the guide leaves the instruments, pixels
constexpr int BesideGuideAndPanel = 1010;  // that they keep beside the guide and an experiment
constexpr QSize CaptureShape(4, 3);        // proportions of what "For Capture" takes
constexpr QSize WidePicture(16, 9);

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
  for (const Pace& pace : Paces) ui_->CmBPace->addItem(QLatin1String(pace.Label));
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
  LeaveModel();
}

void ControlPanel::ConnectSession() {
  connect(&session_, &Session::ModelAboutToChange, this, [this] {
    RememberWindows();
    LeaveModel();
  });
  connect(&session_, &Session::ModelChanged, this, &ControlPanel::ShowModel);
  connect(&session_, &Session::FileLoaded, this, &ControlPanel::ShowLoaded);
  connect(&session_, &Session::FileChanged, this, &ControlPanel::ShowTitle);
  session_.TellPlacedBy(
      [this] { return !ui_->InstrumentArea->IsFilled() && !experiments_->IsActive(); });
}

void ControlPanel::AddLoops() {
  loops_ = std::make_unique<LoopCommands>(*this, session_, shelf_, data_);
  models_ = new ModelList(*ui_->ModelCmB, session_, shelf_);
  files_->AskBeforeSaving([this] { return loops_->MaySaveModel(); });
  auto* bar = new LoopChangeBar(session_.Draft());
  ui_->RoomColumn->insertWidget(1, bar);
  connect(bar, &LoopChangeBar::ReadAgainAsked, loops_.get(), &LoopCommands::ReadAgain);
  connect(ui_->MINewLoop, &QAction::triggered, loops_.get(), &LoopCommands::New);
  connect(ui_->MIOpenLoop, &QAction::triggered, loops_.get(), &LoopCommands::Open);
  connect(ui_->MIEditLoop, &QAction::triggered, loops_.get(), &LoopCommands::Edit);
  const auto follow = [this] { ui_->MIEditLoop->setEnabled(loops_->CanEdit()); };
  connect(&session_, &Session::ModelChanged, this, follow);
  connect(&session_.Draft(), &LoopDraft::FileChanged, this, follow);
  connect(&session_, &Session::AboutToApply, this, [this] {
    before_ = {{}, Running(), focusWidget()};
    // An experiment ends here, and brings the user's own desk back by itself.
    if (!experiments_->IsActive()) before_->Desk = ui_->InstrumentArea->Present();
  });
  connect(&session_, &Session::Applied, this, [this] {
    const auto before = std::exchange(before_, std::nullopt);
    if (before->Desk) ui_->InstrumentArea->Restore(*before->Desk);
    if (before->Focus) before->Focus->setFocus();
    if (before->Running) Run();
  });
}

// What the strip and the scope have as buttons and lists, by menu and key.
void ControlPanel::AddKeyboard() {
  new PaneKeys(*this, *ui_->SBRun->parentWidget(), *ui_->InstrumentArea);
  ui_->MRun->addSeparator();
  AddListMenu(*ui_->MRun, QStringLiteral("&Model"), "MModel", *ui_->ModelCmB);
  AddListMenu(*ui_->MRun, QStringLiteral("&Pace"), "MPace", *ui_->CmBPace);
  ui_->MRun->addSeparator();
  AddPressItem(*ui_->MRun, QStringLiteral("Model &Diagram"), "MIDiagram", Qt::CTRL | Qt::Key_D,
               [this] { return ui_->SBShowModelBMP; });
  AddPressItem(*ui_->MRun, QStringLiteral("&About This Model"), "MIAboutModel",
               Qt::CTRL | Qt::Key_I, [this] { return ui_->BShowModelTXT; });
  ui_->MView->addSeparator();
  const std::tuple<const char*, const char*, const char*, const char*> pages[] = {
      {"Sc&ales of the Scope", "MIScales", "Ctrl+1", "PageScales"},
      {"&Trigger of the Scope", "MITrigger", "Ctrl+2", "PageTrigger"},
      {"&Measurements of the Scope", "MIMeasure", "Ctrl+3", "PageMeasure"},
      {"&Hide or Show These", "MIHidePage", "Ctrl+0", "SBHide"}};
  for (const auto& [text, name, key, button] : pages) {
    AddPressItem(*ui_->MView, QLatin1String(text), name, QKeySequence(QLatin1String(key)),
                 [this, button = button] {
                   return ui_->InstrumentArea->findChild<QAbstractButton*>(QLatin1String(button));
                 });
  }
}

void ControlPanel::ConnectControls() {
  connect(ui_->SBRun, &QAbstractButton::toggled, this, &ControlPanel::RunToggled);
  connect(ui_->SBRun, &QAbstractButton::clicked, this, [this] {
    if (Model()) Model()->Bench().StartScopes();
  });
  // A shortcut of the button itself would give it the focus.
  const auto shortcut = [this](const char* keys, QAbstractButton* button) {
    connect(new QShortcut(QKeySequence(QLatin1String(keys)), this), &QShortcut::activated, button,
            &QAbstractButton::click);
  };
  shortcut("Ctrl+R", ui_->SBRun);
  shortcut("Ctrl+.", ui_->SBStop);
  connect(experiments_, &ExperimentsMenu::RunWanted, this, [this](bool run) {
    if (run != Running()) ui_->MIRunStop->trigger();
  });
  connect(ui_->MIRunStop, &QAction::triggered, this,
          [this] { (Running() ? ui_->SBStop : ui_->SBRun)->click(); });
  connect(ui_->CmBPace, &QComboBox::currentIndexChanged, this,
          [this](int index) { driver_.SetPace(Paces[index].Simulated); });
  connect(&driver_, &RunDriver::Frame, this, &ControlPanel::ShowFrame);
  connect(&driver_, &RunDriver::Ended, this, &ControlPanel::Stop);
  connect(ui_->SBShowModelBMP, &QAbstractButton::clicked, picture_,
          &ModelPictureWindow::OpenWindow);
  connect(ui_->MIDiagramPane, &QAction::triggered, picture_,
          [this](bool on) { on ? picture_->OpenPane() : picture_->hide(); });
  connect(picture_, &QDockWidget::visibilityChanged, ui_->MIDiagramPane,
          [this] { ui_->MIDiagramPane->setChecked(!picture_->isHidden()); });
  connect(&picture_->Diagram(), &DiagramView::MeterWanted, this, &ControlPanel::AddMeterOf);
  connect(&picture_->Diagram(), &DiagramView::Given, ui_->InstrumentArea,
          [this](const Instrument& to) { ui_->InstrumentArea->SetShown(to, true); });
  connect(ui_->BShowModelTXT, &QAbstractButton::clicked, this, [this] {
    const QString name = QtText(Model()->Name());
    if (session_.Loop()) {
      text_->ShowText(name, QtText(session_.Loop()->Text));
    } else {
      text_->ShowModel(name, QtText(Model()->TextFile()), data_);
    }
  });
  const auto undo = [this] { Model()->Bench().History().Undo(); };
  const auto redo = [this] { Model()->Bench().History().Redo(); };
  connect(ui_->MIUndo, &QAction::triggered, this, undo);
  connect(ui_->SBUndo, &QAbstractButton::clicked, this, undo);
  connect(ui_->MIRedo, &QAction::triggered, this, redo);
  connect(ui_->SBRedo, &QAbstractButton::clicked, this, redo);
  connect(ui_->MILoad, &QAction::triggered, files_.get(), &FileCommands::Load);
  connect(ui_->SpeedButton1, &QAbstractButton::clicked, files_.get(), &FileCommands::Load);
  connect(ui_->MISave, &QAction::triggered, files_.get(), &FileCommands::Save);
  connect(ui_->SBSave, &QAbstractButton::clicked, files_.get(), &FileCommands::Save);
  connect(ui_->MISaveAs, &QAction::triggered, files_.get(), &FileCommands::SaveAs);
  connect(ui_->MIResizeWhenLoading, &QAction::toggled, this,
          [this](bool on) { session_.SetRestoresWindows(on); });
  ui_->MIComeBack->setChecked(last_session::IsOn());
  connect(ui_->MIComeBack, &QAction::toggled, this, &last_session::SetOn);
  connect(ui_->MIRestoreDefaults, &QAction::triggered, this, &ControlPanel::RestoreDefaults);
  connect(ui_->MIResetVariables, &QAction::triggered, this, &ControlPanel::ResetVariables);
  connect(ui_->MIExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->MIAddMeter, &QAction::triggered, this, &ControlPanel::AddMeter);
  connect(ui_->MIFillScreen, &QAction::triggered, ui_->InstrumentArea, &Workspace::FillScreen);
  connect(ui_->MICapture, &QAction::triggered, this, [this] {
    Model()->PrepareCapture();
    CopyCapture(CaptureShape);
  });
  connect(ui_->MIWideCapture, &QAction::triggered, this, [this] {
    Model()->PrepareWideCapture();
    CopyCapture(WidePicture);
  });
  QAction* whatsThis = QWhatsThis::createAction(this);
  whatsThis->setObjectName(QStringLiteral("MIWhatsThis"));
  ui_->MHelp->insertAction(ui_->MIAbout, whatsThis);
  connect(ui_->MITune, &QAction::triggered, this, &ControlPanel::ShowTune);
  connect(ui_->MIGuide, &QAction::triggered, this, &ControlPanel::ShowGuide);
  connect(ui_->MIAbout, &QAction::triggered, this, &ControlPanel::ShowAbout);
  ui_->ModelCmB->installEventFilter(this);
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
