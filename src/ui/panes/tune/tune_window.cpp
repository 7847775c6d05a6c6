#include "ui/panes/tune/tune_window.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <tuple>
#include <utility>

#include "core/constant.h"
#include "core/files/atomic_save.h"
#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/scope/scope.h"
#include "instruments/scope/trace_csv.h"
#include "loops/own_loop.h"
#include "ui/panes/tune/tune_tables.h"
#include "ui/session/session.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/typed_number.h"
#include "ui/widgets/window_place.h"

namespace torvane {

namespace {

constexpr QSize WindowSize(860, 560);
constexpr int Edge = 6;
constexpr double MostHeight = 0.42;  // of the display, so that the scope is seen above
constexpr int MostTunings = 100000;
const QString NoMeasure = QStringLiteral("Nothing more");

/// What was typed where it cannot stand, in a field of its own.
struct FieldFault {
  QLineEdit* Field;
  QString Text;
};

// The file's text with other values of constants.
std::string WithValues(const std::string& text, const std::map<std::string, double>& values) {
  std::string changed;
  LineReader lines(text);
  for (std::string line; lines.Next(line);) {
    const Record record = ParseRecord(line, lines.Number());
    const auto found = values.find(record.Field(1));
    if (record.Field(0) == "Constant" && found != values.end()) {
      AppendRecord(changed, "Constant", {found->first, FormatShortest(found->second)});
    } else {
      changed += line + "\r\n";
    }
  }
  return changed;
}

QLineEdit* MakeField(const char* name, const QString& title, const QString& hint) {
  auto* field = new QLineEdit;
  field->setObjectName(QLatin1String(name));
  field->setAccessibleName(title);
  field->setToolTip(hint);
  field->setAlignment(Qt::AlignRight);
  field->setFixedWidth(field->fontMetrics().averageCharWidth() * 9);
  return field;
}

QComboBox* MakeList(const char* name, const QString& title, const QString& hint) {
  auto* list = new QComboBox;
  list->setObjectName(QLatin1String(name));
  list->setAccessibleName(title);
  list->setToolTip(hint);
  return list;
}

}  // namespace

TuneWindow::TuneWindow(Session& session, AskFile askFile, QWidget* parent)
    : QDialog(parent, Qt::Tool),
      session_(session),
      askFile_(std::move(askFile)),
      group_(session),
      run_(nullptr),
      vary_(new VaryTable),
      require_(new RequireTable),
      bar_(new QProgressBar),
      state_(new QLabel) {
  setObjectName(QStringLiteral("TuneF"));
  setWindowTitle(QStringLiteral("Tune"));
  auto* tables = new QHBoxLayout;
  tables->addWidget(vary_, 1);
  tables->addWidget(require_, 1);
  bar_->setObjectName(QStringLiteral("PBTune"));
  bar_->setAccessibleName(QStringLiteral("Runs made"));
  bar_->setFormat(QStringLiteral("%v of %m runs"));
  state_->setObjectName(QStringLiteral("LTune"));
  state_->setWordWrap(true);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(Edge, Edge, Edge, Edge);
  column->setSpacing(Edge);
  auto* task = new QHBoxLayout;
  task->addWidget(MakeSignals(), 1);
  task->addWidget(MakeGoal());
  column->addLayout(task);
  column->addLayout(tables, 1);
  column->addWidget(state_);
  column->addWidget(MakeButtons());
  connect(&run_, &TuningRun::Progress, this, &TuneWindow::ShowProgress);
  connect(&run_, &TuningRun::ResponseFound, this, &TuneWindow::ShowResponse);
  connect(&run_, &TuningRun::Ended, this, &TuneWindow::ShowEnd);
  connect(&session, &Session::ModelAboutToChange, this, [this] {
    if (session_.IsApplying()) return;
    close();
    prepared_ = false;
  });
  connect(&session, &Session::AboutToApply, this, [this] { isKept_ = prepared_ && IsOnScope(); });
  connect(&session, &Session::Applied, this, &TuneWindow::FollowText);
}

QWidget* TuneWindow::MakeSignals() {
  auto* row = new QWidget;
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins({});
  command_ =
      MakeList("CmBTuneCommand", QStringLiteral("Command"),
               QStringLiteral("The signal that is to be followed, by a step of the generator"));
  response_ = MakeList("CmBTuneResponse", QStringLiteral("Response"),
                       QStringLiteral("The signal that follows it"));
  for (const auto& [text, list] : {std::pair{QStringLiteral("Co&mmand"), command_},
                                   std::pair{QStringLiteral("&Response"), response_}}) {
    auto* caption = new QLabel(text);
    caption->setBuddy(list);
    line->addWidget(caption);
    line->addWidget(list, 1);
  }
  return row;
}

QWidget* TuneWindow::MakeGoal() {
  auto* row = new QWidget;
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins({});
  best_ = MakeList("CmBTuneBest", QStringLiteral("Make best"),
                   QStringLiteral("The measure that is to be as good as it can be when all that is "
                                  "required is met"));
  best_->addItem(NoMeasure);
  for (const std::string& caption : RequireTable::Captions()) {
    best_->addItem(QString::fromStdString(caption));
  }
  until_ = MakeField("ETuneUntil", QStringLiteral("Seconds of a run"),
                     QStringLiteral("How long a run goes on after its step at the latest; it ends "
                                    "as soon as the response stands"));
  runs_ = MakeField("ETuneRuns", QStringLiteral("Number of runs"),
                    QStringLiteral("So many tunings are tried at most"));
  const std::tuple<QString, QWidget*> fields[] = {{QStringLiteral("Make &best"), best_},
                                                  {QStringLiteral("&Until (s)"), until_},
                                                  {QStringLiteral("Ru&ns"), runs_}};
  for (const auto& [text, field] : fields) {
    auto* caption = new QLabel(text);
    caption->setBuddy(field);
    line->addWidget(caption);
    line->addWidget(field);
  }
  return row;
}

QWidget* TuneWindow::MakeButtons() {
  auto* row = new QWidget;
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins({});
  const auto add = [&](const char* name, const QString& text, const QString& hint, auto act) {
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(hint);
    button->setAutoDefault(false);
    connect(button, &QAbstractButton::clicked, this, act);
    line->addWidget(button);
    return button;
  };
  start_ = add("BTuneStart", QStringLiteral("&Start"),
               QStringLiteral("Looks for the best tuning; the model goes on meanwhile"),
               &TuneWindow::Begin);
  stop_ = add("BTuneStop", QStringLiteral("S&top"),
              QStringLiteral("Ends the search and keeps the best so far"), [this] {
                stopped_ = true;
                stop_->setEnabled(false);
                run_.Stop();
              });
  line->addWidget(bar_, 1);
  apply_ =
      add("BTuneApply", QStringLiteral("&Apply"),
          QStringLiteral("Gives the model the best constants so far; one undo takes them back"),
          &TuneWindow::Apply);
  save_ = add("BTuneSave", QStringLiteral("Sa&ve As..."),
              QStringLiteral("Saves the model with the best constants so far in a file"),
              &TuneWindow::SaveAs);
  add("BTuneClose", QStringLiteral("&Close"), QStringLiteral("Ends the search"), &QWidget::close);
  return row;
}

void TuneWindow::Open() {
  if (!isVisible()) {
    const QSize room = screen()->availableSize();
    resize(WindowSize.boundedTo({room.width(), static_cast<int>(room.height() * MostHeight)}));
    move(OnDisplay(parentWidget()->geometry().bottomRight(), *this));
    if (!prepared_) Prepare();
  }
  show();
  Refresh();
  raise();
  activateWindow();
}

void TuneWindow::Prepare() {
  prepared_ = true;
  progress_.reset();
  kept_ = 0;
  vary_->ShowConstants(session_.Model()->Bench());
  ProposeSignals();
  until_->setText(QStringLiteral("10"));
  runs_->setText(QString::number(TuningTask().MostRuns));
  best_->setCurrentIndex(0);
  require_->Clear();
  bar_->setRange(0, TuningTask().MostRuns);
  bar_->setValue(0);
  told_.clear();
  state_->setText(QStringLiteral(
      "Switch on constants to vary, type bounds, choose what is to be best, and press Start."));
  ShowButtons();
}

void TuneWindow::Refresh() {
  if (isVisible() && session_.Model()) vary_->ShowPresent(session_.Model()->Bench());
}

// Those of the first analyser's closed loop.
void TuneWindow::ProposeSignals() {
  const ZelBenchTop& bench = session_.Model()->Bench();
  for (QComboBox* list : {command_, response_}) {
    list->clear();
    for (const Variable* signal : bench.Variables()) {
      if (signal->Internal()) continue;
      list->addItem(QString::fromStdString(signal->Name()));
    }
  }
  response_->setCurrentIndex(std::min(1, response_->count() - 1));
  const auto analysers = bench.Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) return;
  const auto& setups = dynamic_cast<FrequencyAnalyser&>(*analysers.front()).Setups();
  const auto closed = std::ranges::find(setups, "Closed", &AnalyserSetup::Name);
  if (closed == setups.end()) return;
  command_->setCurrentText(QString::fromStdString(closed->Input));
  response_->setCurrentText(QString::fromStdString(closed->Output));
}

// What was typed of what the loop still has stays, and the search goes on with the text that it was
// begun with.
void TuneWindow::FollowText() {
  kept_ = isKept_ && Scope() ? Scope()->KeptIdentity() : 0;
  before_ = 0;
  if (!prepared_) return;
  vary_->FollowText(session_.Model()->Bench());
  const QString chosen[] = {command_->currentText(), response_->currentText()};
  ProposeSignals();
  command_->setCurrentText(chosen[0]);
  response_->setCurrentText(chosen[1]);
  if (!told_.isEmpty()) Tell(told_);
}

ZelScope* TuneWindow::Scope() const {
  const auto& scopes = session_.Model()->Bench().Instruments(InstrumentKind::Scope);
  return scopes.empty() ? nullptr : dynamic_cast<ZelScope*>(scopes.front());
}

void TuneWindow::Tell(const QString& state) {
  told_ = state;
  const auto* const own = dynamic_cast<const loops::OwnLoop*>(session_.Model());
  const bool former = own && own->Text() != task_.LoopText;
  state_->setText(former ? QStringLiteral("With the text before Apply: ") + state : state);
}

TuningTask TuneWindow::Task() const {
  TuningTask task;
  task.Model = ModelFileText(*session_.Model());
  const auto* const own = dynamic_cast<const loops::OwnLoop*>(session_.Model());
  if (own) task.LoopText = own->Text();
  task.Command = command_->currentText().toStdString();
  task.Response = response_->currentText().toStdString();
  task.Ranges = vary_->Ranges();
  task.Requirements = require_->Requirements();
  if (best_->currentIndex() > 0) task.Best = best_->currentText().toStdString();
  if (task.Requirements.empty() && task.Best.empty()) {
    throw TableFault{0, 1, "type a bound here, or choose what is to be best"};
  }
  const auto until = ParseNumber(WithoutSuffix(until_->text().trimmed().toStdString()));
  if (!until || *until <= 0.0) throw FieldFault{until_, QStringLiteral("a number above 0")};
  task.Until = FormatShortest(*until);
  const auto runs = ParseInteger(runs_->text().trimmed().toStdString());
  if (!runs || *runs < 1 || *runs > MostTunings) {
    throw FieldFault{runs_, QStringLiteral("a whole number from 1 to %1").arg(MostTunings)};
  }
  task.MostRuns = *runs;
  return task;
}

// What is being typed counts, by whichever key or mouse the search is begun.
void TuneWindow::Begin() {
  start_->setFocus();
  try {
    task_ = Task();
  } catch (const VaryFault& fault) {
    return vary_->Show(fault);
  } catch (const TableFault& fault) {
    return require_->Show(fault);
  } catch (const FieldFault& fault) {
    fault.Field->setFocus();
    return ShowNotice(*fault.Field, fault.Text);
  }
  progress_.reset();
  stopped_ = false;
  vary_->ShowPresent(session_.Model()->Bench());
  vary_->ShowBest({});
  require_->ShowBest({});
  bar_->setRange(0, task_.MostRuns);
  bar_->setValue(0);
  Tell(QStringLiteral("The first run goes on."));
  run_.Start(task_);
  ShowButtons();
}

void TuneWindow::ShowProgress(const TuningProgress& progress) {
  progress_ = progress;
  bar_->setValue(progress.Runs);
  Tell(QStringLiteral("Run %1 of %2: %3")
           .arg(progress.Runs)
           .arg(task_.MostRuns)
           .arg(progress.Met ? QStringLiteral("the best so far meets all.")
                             : QStringLiteral("none meets all yet.")));
  vary_->ShowBest(progress.Values);
  require_->ShowBest(progress.Measures);
  ShowButtons();
}

// Only the first one is a change to undo; the others take its place.
void TuneWindow::ShowResponse(const QString& file) {
  ZelScope* const scope = Scope();
  if (!scope) return;
  const TraceText traces = ReadTraceFile(file.toStdString(), *scope);
  if (!traces.Fault.empty()) return;
  if (IsOnScope()) {
    scope->RenewKeptTraces(traces.Screen);
  } else {
    before_ = scope->KeptIdentity();
    scope->KeepTraces(traces.Screen);
    kept_ = scope->KeptIdentity();
  }
}

bool TuneWindow::IsOnScope() const {
  const ZelScope* const scope = Scope();
  return scope && kept_ > 0 && scope->KeptIdentity() == kept_;
}

void TuneWindow::TakeOffScope() {
  if (IsOnScope()) Scope()->ShowKeptTraces(before_);
}

void TuneWindow::ShowEnd(const QString& fault) {
  const bool met = progress_ && progress_->Met;
  const bool cut = stopped_ && !progress_;
  // It may have found before that there is nothing better.
  if (met && !stopped_) bar_->setMaximum(progress_->Runs);
  const QString runs = QStringLiteral("%1 runs").arg(progress_ ? progress_->Runs : 0);
  if (met) {
    Tell((stopped_ ? QStringLiteral("Stopped after %1: the best so far meets all.")
                   : QStringLiteral("Done after %1: the best meets all."))
             .arg(runs));
  } else {
    const QString why = fault.isEmpty() || cut ? QStringLiteral("Stopped after %1.").arg(runs)
                                               : fault.left(1).toUpper() + fault.mid(1);
    Tell(IsOnScope() ? why + QStringLiteral(" The scope's thin traces are of what comes nearest.")
                     : why);
  }
  ShowButtons();
}

void TuneWindow::ShowButtons() {
  const bool running = run_.IsRunning();
  start_->setEnabled(!running);
  stop_->setEnabled(running && !stopped_);
  apply_->setEnabled(progress_.has_value());
  save_->setEnabled(progress_.has_value());
  for (QWidget* field : {static_cast<QWidget*>(command_), static_cast<QWidget*>(response_),
                         static_cast<QWidget*>(best_), static_cast<QWidget*>(until_),
                         static_cast<QWidget*>(runs_)}) {
    field->setEnabled(!running);
  }
  vary_->SetEditable(!running);
  require_->SetEditable(!running);
}

std::map<std::string, double> TuneWindow::Found() const {
  std::map<std::string, double> values;
  for (const StudyRange& range : task_.Ranges) {
    const auto found = progress_->Values.find(range.Name);
    const auto value = found == progress_->Values.end() ? std::nullopt : ParseNumber(found->second);
    if (value) values[range.Name] = *value;
  }
  return values;
}

void TuneWindow::Apply() {
  const auto values = Found();
  std::string caption;
  for (const auto& [name, value] : values) {
    caption += (caption.empty() ? "" : ", ") + name + " = " + FormatEdit(value);
  }
  group_.Set(values, caption);
  vary_->ShowPresent(session_.Model()->Bench());
}

// The model as the search began with it.
void TuneWindow::SaveAs() {
  const QString path =
      askFile_(QString::fromStdString(session_.Model()->Name()) + QStringLiteral(" tuned.tvf"));
  if (!path.isEmpty()) SaveAtomically(path.toStdString(), WithValues(task_.Model, Found()));
}

// What meets nothing is not left on the scope, where nobody would know what it is.
void TuneWindow::hideEvent(QHideEvent* event) {
  QDialog::hideEvent(event);
  if (event->spontaneous()) return;
  const bool running = run_.IsRunning();
  run_.Abandon();
  if (!progress_ || !progress_->Met) TakeOffScope();
  stopped_ = stopped_ || running;
  if (running) ShowEnd({});
}

}  // namespace torvane
