// What the strip's controls, the menus and the session's changes do.

#include <QShortcut>
#include <QWhatsThis>
#include <tuple>
#include <utility>

#include "loops/loop_file.h"
#include "plot/qt_text.h"
#include "ui/desk/control_panel.h"
#include "ui/desk/experiments_menu.h"
#include "ui/desk/file_commands.h"
#include "ui/desk/loop_change_bar.h"
#include "ui/desk/loop_commands.h"
#include "ui/desk/model_list.h"
#include "ui/desk/pane_keys.h"
#include "ui/desk/strip_menus.h"
#include "ui/panes/diagram/diagram_view.h"
#include "ui/panes/model_views.h"
#include "ui/session/last_session.h"
#include "ui_control_panel.h"

namespace torvane {

namespace {

struct Pace {
  const char* Label;
  double Simulated;  // seconds for each real one
};
constexpr Pace Paces[] = {
    {"Fastest", RunDriver::Unlimited}, {"Real time", 1.0}, {"1/10", 0.1}, {"1/100", 0.01}};
constexpr QSize CaptureShape(4, 3);  // proportions of what "For Capture" takes
constexpr QSize WidePicture(16, 9);

}  // namespace

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
      {"&Hide or Show Controls of the Scope", "MIHidePage", "Ctrl+0", "SBHide"}};
  for (const auto& [text, name, key, button] : pages) {
    AddPressItem(*ui_->MView, QLatin1String(text), name, QKeySequence(QLatin1String(key)),
                 [this, button = button] {
                   return ui_->InstrumentArea->findChild<QAbstractButton*>(QLatin1String(button));
                 });
  }
  AddPressItem(
      *ui_->MView, QStringLiteral("Hide or Show Controls of the Analyser"), "MIHideRows",
      Qt::CTRL | Qt::Key_9, [this]() -> QAbstractButton* {
        for (auto* button : ui_->InstrumentArea->findChildren<QAbstractButton*>("SBHideRows")) {
          if (button->isVisible()) return button;
        }
        return nullptr;
      });
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
  for (const Pace& pace : Paces) ui_->CmBPace->addItem(QLatin1String(pace.Label));
  connect(ui_->CmBPace, &QComboBox::currentIndexChanged, this,
          [this](int index) { driver_.SetPace(Paces[index].Simulated); });
  connect(&driver_, &RunDriver::Frame, this, &ControlPanel::ShowFrame);
  connect(&driver_, &RunDriver::Ended, this, &ControlPanel::Stop);
  connect(ui_->SBShowModelBMP, &QAbstractButton::clicked, picture_,
          &ModelPictureWindow::OpenWindow);
  connect(ui_->MIDiagramPane, &QAction::triggered, picture_,
          [this](bool on) { on ? OpenDiagramPane() : picture_->hide(); });
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

// The scope's graph keeps its room.
void ControlPanel::OpenDiagramPane() {
  picture_->OpenPane(ui_->InstrumentArea->height() - ui_->InstrumentArea->LeastHeight());
}

}  // namespace torvane
