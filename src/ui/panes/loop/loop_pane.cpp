#include "ui/panes/loop/loop_pane.h"

#include <QAction>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QStyle>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "models/catalogue.h"
#include "plot/qt_text.h"
#include "ui/panes/loop/loop_edit.h"
#include "ui/session/loop_draft.h"
#include "ui/session/session.h"

namespace torvane {

namespace {

constexpr int CheckMilliseconds = 200;  // that the hand has to rest
constexpr int MostProblemRows = 6;      // of the list of problems
constexpr QSize LeastLoopText(260, 160);

}  // namespace

LoopPane::LoopPane(Session& session, QWidget* parent)
    : QDockWidget(QStringLiteral("Loop"), parent),
      session_(session),
      draft_(session.Draft()),
      edit_(new LoopEdit),
      list_(new QListWidget),
      state_(new QLabel) {
  setObjectName(QStringLiteral("LoopPane"));
  AddControls();
  check_.setSingleShot(true);
  check_.setInterval(CheckMilliseconds);
  connect(&check_, &QTimer::timeout, this, &LoopPane::Check);
  connect(edit_, &QPlainTextEdit::textChanged, this, &LoopPane::TextWritten);
  connect(edit_, &LoopEdit::ApplyAsked, this, &LoopPane::Apply);
  connect(edit_, &LoopEdit::SaveAsked, this, &LoopPane::SaveAsked);
  connect(&draft_, &LoopDraft::TextChanged, this, &LoopPane::TakeText);
  connect(&draft_, &LoopDraft::FileChanged, this, &LoopPane::ShowState);
  connect(&session_, &Session::ModelChanged, this, &LoopPane::ShowState);
  connect(list_, &QListWidget::currentRowChanged, this, &LoopPane::GoToProblem);
  connect(list_, &QListWidget::itemClicked, this, [this] { GoToProblem(list_->currentRow()); });
  hide();
}

QWidget* LoopPane::MakeButton(const char* name, const QString& text, const QString& hint) {
  auto* button = new QToolButton;
  button->setObjectName(QLatin1String(name));
  button->setText(text);
  button->setToolTip(hint);
  button->setFocusPolicy(Qt::TabFocus);
  return button;
}

void LoopPane::AddControls() {
  auto* middle = new QWidget;
  auto* column = new QVBoxLayout(middle);
  column->setContentsMargins(4, 4, 4, 4);
  column->setSpacing(4);
  auto* row = new QHBoxLayout;
  auto* apply = MakeButton("SBApplyLoop", QStringLiteral("Apply"),
                           QStringLiteral("Makes this text the loop that runs (Ctrl+Return)"));
  auto* save = MakeButton("SBSaveLoop", QStringLiteral("Save"),
                          QStringLiteral("Saves the text to its file (Ctrl+S in the text)"));
  auto* saveAs = MakeButton("SBSaveLoopAs", QStringLiteral("Save As..."),
                            QStringLiteral("Saves the text to another file"));
  connect(qobject_cast<QToolButton*>(apply), &QToolButton::clicked, this, &LoopPane::Apply);
  connect(qobject_cast<QToolButton*>(save), &QToolButton::clicked, this, &LoopPane::SaveAsked);
  connect(qobject_cast<QToolButton*>(saveAs), &QToolButton::clicked, this, &LoopPane::SaveAsAsked);
  state_->setObjectName(QStringLiteral("LLoopState"));
  state_->setTextFormat(Qt::PlainText);
  for (QWidget* button : {apply, save, saveAs}) row->addWidget(button);
  row->addStretch();
  row->addWidget(state_);
  edit_->setObjectName(QStringLiteral("MLoop"));
  edit_->setAccessibleName(QStringLiteral("Text of the loop"));
  edit_->setMinimumSize(LeastLoopText);
  list_->setObjectName(QStringLiteral("LBProblems"));
  list_->setAccessibleName(QStringLiteral("What is wrong with the text"));
  list_->setToolTip(QStringLiteral("A click goes to the place; Ctrl+C copies all of it"));
  list_->setWordWrap(true);
  const int sign = style()->pixelMetric(QStyle::PM_SmallIconSize);
  list_->setIconSize({sign, sign});
  list_->hide();
  auto* copy = new QAction(QStringLiteral("&Copy All"), list_);
  copy->setObjectName(QStringLiteral("MICopyProblems"));
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, &LoopPane::CopyProblems);
  list_->addAction(copy);
  list_->setContextMenuPolicy(Qt::ActionsContextMenu);
  column->addLayout(row);
  column->addWidget(edit_, 1);
  column->addWidget(list_);
  setWidget(middle);
}

void LoopPane::Open() {
  show();
  raise();
  activateWindow();
  edit_->setFocus();
}

// What a plain text is made of is not to change: a blank that does not break is no blank.
static QString WrittenIn(const QPlainTextEdit& edit) {
  return edit.document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

// What the text of another file was is nothing to go back to.
void LoopPane::TakeText() {
  if (std::exchange(path_, draft_.Path()) != draft_.Path()) {
    edit_->setPlainText(draft_.Text());
  } else if (WrittenIn(*edit_) != draft_.Text()) {
    edit_->Replace(draft_.Text());
  }
  notes_.clear();
  Check();
}

void LoopPane::TextWritten() {
  const QString text = WrittenIn(*edit_);
  if (text == draft_.Text()) return;
  draft_.SetText(text);
  notes_.clear();
  ShowState();
  check_.start();
}

loops::LoopFile LoopPane::Check() {
  check_.stop();
  loops::LoopFile loop = loops::ReadLoopText(
      draft_.Path().toStdString(), draft_.Text().toStdString(), session_.Models().Names());
  ShowProblems(loop.Reading.Problems, notes_);
  ShowState();
  return loop;
}

bool LoopPane::Apply() {
  if (draft_.IsEmpty()) return false;
  const loops::LoopFile loop = Check();
  if (!loop.Reading.Plan) {
    const auto first = std::ranges::find(problems_, false, &loops::Problem::Warning);
    if (first != problems_.end()) edit_->GoTo(first->Where);
    edit_->setFocus();
    return false;
  }
  std::vector<std::string> notes;
  if (!session_.Apply(loop, notes)) return false;
  notes_ = notes;
  ShowProblems(problems_, notes_);
  return true;
}

void LoopPane::ShowProblems(const std::vector<loops::Problem>& problems,
                            const std::vector<std::string>& notes) {
  problems_ = problems;
  edit_->SetProblems(problems);
  const QSignalBlocker blocker(list_);
  list_->clear();
  const QString file = QFileInfo(draft_.Path()).fileName();
  for (const loops::Problem& problem : problems) {
    auto* item =
        new QListWidgetItem(style()->standardIcon(problem.Warning ? QStyle::SP_MessageBoxWarning
                                                                  : QStyle::SP_MessageBoxCritical),
                            QtText(loops::PlaceText(file.toStdString(), problem.Where) +
                                   (problem.Warning ? ": warning: " : ": ") + problem.Text));
    list_->addItem(item);
  }
  for (const std::string& note : notes) {
    list_->addItem(new QListWidgetItem(style()->standardIcon(QStyle::SP_MessageBoxInformation),
                                       QtText(note).replace(u'\r', u' ')));
  }
  list_->setVisible(list_->count() > 0);
  // Two lines for each, as the pane may be narrow.
  const int rows = std::min(list_->count(), MostProblemRows / 2);
  const int height = 2 * list_->frameWidth() + (2 * rows + 1) * fontMetrics().lineSpacing();
  list_->setFixedHeight(height);
}

void LoopPane::GoToProblem(int row) {
  if (row < 0 || row >= static_cast<int>(problems_.size())) return;
  edit_->GoTo(problems_[static_cast<std::size_t>(row)].Where);
}

void LoopPane::CopyProblems() const {
  QStringList texts;
  for (int row = 0; row < list_->count(); ++row) texts << list_->item(row)->text();
  QGuiApplication::clipboard()->setText(texts.join(u'\n'));
}

// Whether the model that runs is what the text says.
void LoopPane::ShowState() {
  const QString file = QFileInfo(draft_.Path()).fileName();
  setWindowTitle((draft_.Unsaved() ? QStringLiteral("* ") : QString()) +
                 (file.isEmpty() ? QStringLiteral("Loop") : file));
  setToolTip(draft_.Path());
  const auto errors = std::ranges::count(problems_, false, &loops::Problem::Warning);
  const bool applied = session_.IsApplied();
  state_->setText(errors == 1  ? QStringLiteral("1 error")
                  : errors > 1 ? QStringLiteral("%1 errors").arg(errors)
                  : applied    ? QStringLiteral("applied")
                               : QStringLiteral("not applied"));
}

}  // namespace torvane
