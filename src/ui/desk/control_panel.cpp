#include "ui/desk/control_panel.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <utility>

#include "core/messages.h"
#include "core/text.h"
#include "models/catalogue.h"
#include "ui/desk/splash.h"
#include "ui/panes/instrument_windows.h"
#include "ui/panes/model_views.h"
#include "ui/session/file_commands.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/held_gestures.h"
#include "ui/widgets/wheel_guard.h"
#include "ui_control_panel.h"

// Resources of a static library are linked in only when they are asked for, outside any namespace.
static void InitIcons() {
  Q_INIT_RESOURCE(torvane_icons);
}

namespace torvane {

namespace {

constexpr int RefreshMilliseconds = 100;
constexpr int SplashMilliseconds = 4000;
constexpr QSize LargestStartSize(1680, 1050);
constexpr QSize RoomySize(1500, 880);  // a display smaller than this is used whole

}  // namespace

TZelControlPanelF::TZelControlPanelF(DataFolder folder, int startModel)
    : ui_(std::make_unique<Ui::TZelControlPanelF>()),
      data_(std::move(folder)),
      driver_(this),
      picture_(new TZelModelPictureF(this)),
      text_(new TZelModelTextF(this)) {
  InitIcons();
  ui_->setupUi(this);
  setAcceptDrops(true);
  new WheelGuard(this);
  new HeldGestures(this, [this] { return model_ ? &model_->Bench().History() : nullptr; });
  files_ = std::make_unique<FileCommands>(*this, *ui_->MRecent);
  UseFixedDigits(*ui_->LTime);
  ConnectControls();
  try {
    for (const std::string& name : ModelNames()) {
      ui_->ModelCmB->addItem(QString::fromStdString(name));
    }
    MakeCurrent(LoadModel(startModel));
    files_->ForgetFile();
  } catch (const std::exception&) {
    Error("Fault in TZelControlPanelF :: FormCreate");
  }
  connect(ui_->ModelCmB, &QComboBox::currentIndexChanged, this, &TZelControlPanelF::SelectModel);
  refreshTimer_.setObjectName(QStringLiteral("Timer1"));
  connect(&refreshTimer_, &QTimer::timeout, this, &TZelControlPanelF::RefreshTick);
  refreshTimer_.start(RefreshMilliseconds);
}

TZelControlPanelF::~TZelControlPanelF() {
  driver_.Stop();
  files_.reset();
  ui_->InstrumentArea->CloseAll();
  if (model_) model_->Bench().History().Attach(nullptr);
}

void TZelControlPanelF::ConnectControls() {
  connect(ui_->SBRun, &QAbstractButton::toggled, this, &TZelControlPanelF::RunToggled);
  connect(ui_->SBRun, &QAbstractButton::clicked, this, [this] {
    if (model_) model_->Bench().StartScopes();
  });
  // A shortcut of the button itself would give it the focus.
  const auto shortcut = [this](const char* keys, QAbstractButton* button) {
    connect(new QShortcut(QKeySequence(QLatin1String(keys)), this), &QShortcut::activated, button,
            &QAbstractButton::click);
  };
  shortcut("Ctrl+R", ui_->SBRun);
  shortcut("Ctrl+.", ui_->SBStop);
  connect(&driver_, &RunDriver::Frame, this, &TZelControlPanelF::ShowFrame);
  connect(&driver_, &RunDriver::Ended, this, &TZelControlPanelF::Stop);
  connect(ui_->SBShowModelBMP, &QAbstractButton::clicked, this, [this] {
    picture_->ShowModel(QString::fromStdString(model_->Name()),
                        QString::fromStdString(model_->PictureFile()), data_);
  });
  connect(ui_->BShowModelTXT, &QAbstractButton::clicked, this, [this] {
    text_->ShowModel(QString::fromStdString(model_->Name()),
                     QString::fromStdString(model_->TextFile()), data_);
  });
  const auto undo = [this] { model_->Bench().History().Undo(); };
  const auto redo = [this] { model_->Bench().History().Redo(); };
  connect(ui_->MIUndo, &QAction::triggered, this, undo);
  connect(ui_->SBUndo, &QAbstractButton::clicked, this, undo);
  connect(ui_->MIRedo, &QAction::triggered, this, redo);
  connect(ui_->SBRedo, &QAbstractButton::clicked, this, redo);
  connect(ui_->MILoad, &QAction::triggered, files_.get(), &FileCommands::Load);
  connect(ui_->SpeedButton1, &QAbstractButton::clicked, files_.get(), &FileCommands::Load);
  connect(ui_->MISave, &QAction::triggered, files_.get(), &FileCommands::Save);
  connect(ui_->MISaveAs, &QAction::triggered, files_.get(), &FileCommands::SaveAs);
  connect(ui_->MIResizeWhenLoading, &QAction::toggled, this,
          [this](bool on) { files_->SetRestoresWindows(on); });
  connect(ui_->MIRestoreDefaults, &QAction::triggered, this, &TZelControlPanelF::RestoreDefaults);
  connect(ui_->MIResetVariables, &QAction::triggered, this, &TZelControlPanelF::ResetVariables);
  connect(ui_->MIExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->MIFillScreen, &QAction::triggered, ui_->InstrumentArea, &Workspace::FillScreen);
  connect(ui_->MICascade, &QAction::triggered, ui_->InstrumentArea, &Workspace::Cascade);
  connect(ui_->MIAbout, &QAction::triggered, this, &TZelControlPanelF::ShowAbout);
  ui_->ModelCmB->installEventFilter(this);
}

void TZelControlPanelF::MakeCurrent(std::unique_ptr<ZelModel> model) {
  if (!model) return;
  Stop();
  ui_->InstrumentArea->CloseAll();
  if (model_) model_->Bench().History().Attach(nullptr);
  model_ = std::move(model);

  ui_->InstrumentArea->Open(MakeInstrumentPanes(model_->Bench()));
  ui_->SBShowModelBMP->setEnabled(!model_->PictureFile().empty());
  ui_->BShowModelTXT->setVisible(!model_->TextFile().empty());
  model_->Bench().History().Attach(this);
  picture_->hide();
  text_->hide();
  ShowModelName();
  ShowTime();
}

void TZelControlPanelF::SelectModel(int index) {
  const std::string name = ui_->ModelCmB->itemText(index).toStdString();
  if (model_ && name == model_->Name()) return;
  if (!model_ || MayDiscardConstants(model_->Bench())) {
    const int found = FindModel(name);
    if (found < 0) {
      Error("Could not find model " + name);
    } else {
      MakeCurrent(LoadModel(found));
      files_->ForgetFile();
    }
  }
  ShowModelName();
}

void TZelControlPanelF::ShowModelName() {
  const QString name = QString::fromStdString(model_->Name());
  if (ui_->ModelCmB->currentText() == name) return;
  const QSignalBlocker blocker(ui_->ModelCmB);
  ui_->ModelCmB->setCurrentIndex(ui_->ModelCmB->findText(name));
}

void TZelControlPanelF::Run() {
  if (!Running()) ui_->SBRun->click();
}

void TZelControlPanelF::Stop() {
  ui_->SBStop->setChecked(true);
}

bool TZelControlPanelF::Running() const {
  return ui_->SBRun->isChecked();
}

void TZelControlPanelF::RunToggled(bool down) {
  if (!model_) return;
  if (down) {
    driver_.Start(*model_);
  } else {
    driver_.Stop();
    ShowFrame();
  }
}

void TZelControlPanelF::ShowFrame() {
  ++frames_;
  ShowTime();
  for (InstrumentFrame* frame : ui_->InstrumentArea->Frames()) frame->Pane().ShowFrame();
}

void TZelControlPanelF::ShowTime() {
  const QString time = QString::fromStdString(FormatGeneral(model_->Time(), 6, 2));
  if (ui_->LTime->text() != time) ui_->LTime->setText(time);
}

void TZelControlPanelF::RefreshTick() {
  if (!model_) return;
  ShowModelName();
  files_->ShowTitle();
  model_->Bench().RefreshInstruments();
}

void TZelControlPanelF::RestorePlacements() {
  ui_->InstrumentArea->RestorePlacements();
}

void TZelControlPanelF::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (urls.size() == 1 && urls.first().isLocalFile()) event->acceptProposedAction();
}

// Loading may ask a question, and the source of the drag waits for the end of the drop.
void TZelControlPanelF::dropEvent(QDropEvent* event) {
  const QString path = event->mimeData()->urls().value(0).toLocalFile();
  event->acceptProposedAction();
  QTimer::singleShot(0, this, [this, path] { files_->Open(path); });
}

void TZelControlPanelF::ResetVariables() {
  model_->Reset();
}

void TZelControlPanelF::RestoreDefaults() {
  model_->RestoreDefaults();
}

void TZelControlPanelF::ShowAbout() {
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

void TZelControlPanelF::ShowAtStart(bool withSplash) {
  const QSize available = screen()->availableSize();
  if (available.width() < RoomySize.width() || available.height() < RoomySize.height()) {
    showMaximized();
  } else {
    resize((available * 0.92).boundedTo(LargestStartSize));
    show();
  }
  if (!withSplash) return;
  auto* splash = new SplashF;
  splash->setAttribute(Qt::WA_DeleteOnClose);
  splash->show();
  splashTimer_.setObjectName(QStringLiteral("TSplash"));
  splashTimer_.setSingleShot(true);
  connect(&splashTimer_, &QTimer::timeout, splash, &QWidget::close);
  connect(ui_->SBRun, &QAbstractButton::toggled, splash, &QWidget::close);
  splashTimer_.start(SplashMilliseconds);
}

void TZelControlPanelF::closeEvent(QCloseEvent* event) {
  if (!model_ || MayDiscardConstants(model_->Bench(), "close")) {
    Stop();
    event->accept();
    QCoreApplication::quit();
  } else {
    event->ignore();
  }
}

// A wheel turned over the model selector must not throw the running model away.
bool TZelControlPanelF::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->ModelCmB && event->type() == QEvent::Wheel) return true;
  return QMainWindow::eventFilter(watched, event);
}

void TZelControlPanelF::SetCaption(UndoItem item, const std::string& caption) {
  QString text = QString::fromStdString(caption);
  text.replace(u'&', QStringLiteral("&&"));
  if (item == UndoItem::UndoMenu) ui_->MIUndo->setText(text);
  if (item == UndoItem::RedoMenu) ui_->MIRedo->setText(text);
}

void TZelControlPanelF::SetEnabled(UndoItem item, bool enabled) {
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
