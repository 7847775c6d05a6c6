#include "ui/panes/experiment_panel.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTextCursor>
#include <QToolButton>
#include <QUrl>
#include <algorithm>
#include <cmath>

#include "instruments/fft/fft_analyser.h"
#include "plot/qt_text.h"
#include "ui/panes/experiment_text.h"

namespace torvane {

namespace {

constexpr QSize LeastText(180, 80);
constexpr double Indent = 20.0;   // of the steps, so that what is read keeps to its line
constexpr int ColumnsFrom = 640;  // from which its text has columns, pixels of the usual font
constexpr int Columns = 3;
constexpr int ColumnMargin = 10;   // between them and around their texts
constexpr int ButtonsBelow = 240;  // below which its buttons stand beside it
const QString SetMark = QStringLiteral("\u2713\u00a0");
// As wide as the mark, so that no line breaks elsewhere and no link moves when it is set.
const QString NoMark = QStringLiteral("\u2002\u2004\u00a0");
const QString NoMarkInText = QStringLiteral("\u200b");
const QString MetMark = QStringLiteral("\u2611");
const QString UnmetMark = QStringLiteral("\u2610");

// One digit behind those of the tolerance would not be read by anybody.
QString RoundedFor(double value, const ExperimentAnswer& answer) {
  constexpr double RoundingError = 1e-9;
  const double digits = std::ceil(-std::log10(answer.Tolerance) - RoundingError);
  QString text = QString::number(value, 'f', std::max(0, static_cast<int>(digits)));
  if (text.startsWith(u'-') && text.toDouble() == 0.0) text.remove(0, 1);
  return answer.Unit.empty() ? text : text + u' ' + QtText(answer.Unit);
}

QString ReadingText(const ExperimentReading& read, const ExperimentAnswer& answer) {
  if (!read.Value) return QtText(read.Gap);
  const QString value = RoundedFor(*read.Value, answer);
  if (!read.Present) return QStringLiteral("%1 before").arg(value);
  if (answer.IsMetBy(*read.Value)) return value;
  return QStringLiteral("%1, not %2").arg(value, RoundedFor(answer.Value, answer));
}

// Of what is nearly as expected.
QString LongestText(const ExperimentAnswer& answer) {
  ExperimentReading other;
  other.Value = answer.Value + 2 * answer.Tolerance;
  other.Present = true;
  return ReadingText(other, answer);
}

ZelXfer* AnalyserOf(const ZelModel& model) {
  const auto& analysers = model.Bench().Instruments(InstrumentKind::FftAnalyser);
  return analysers.empty() ? nullptr : dynamic_cast<ZelXfer*>(analysers.front());
}

}  // namespace

/// An experiment that is on.
struct ExperimentPanel::Trial {
  Trial(const Experiment& experiment, ZelModel& model)
      : Record(experiment), Proposed(ProposedBy(experiment)), Model(model), Reader(Record, model) {}

  Experiment Record;
  std::vector<ExperimentSetting> Proposed;
  ZelModel& Model;
  ExperimentReader Reader;
};

ExperimentPanel::ExperimentPanel(QWidget* parent)
    : QDockWidget(parent),
      text_(new QTextBrowser),
      layout_(new QBoxLayout(QBoxLayout::TopToBottom)),
      buttons_(new QBoxLayout(QBoxLayout::LeftToRight)),
      run_(new QToolButton),
      previous_(new QToolButton),
      next_(new QToolButton) {
  setObjectName(QStringLiteral("ExperimentPanel"));
  text_->setObjectName(QStringLiteral("MExperiment"));
  text_->setAccessibleName(QStringLiteral("Experiment"));
  text_->setTabChangesFocus(true);
  text_->setOpenLinks(false);
  text_->setUndoRedoEnabled(false);
  text_->setMinimumSize(LeastText);
  text_->document()->setIndentWidth(Indent);
  text_->installEventFilter(this);
  connect(text_, &QTextBrowser::anchorClicked, this,
          [this](const QUrl& link) { SetValue(link.toString()); });
  auto* body = new QWidget;
  body->setLayout(layout_);
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->addWidget(text_, 1);
  AddButtons();
  setWidget(body);
  SetRunning(false);
  hide();
}

ExperimentPanel::~ExperimentPanel() = default;

void ExperimentPanel::AddButtons() {
  const auto add = [&](QToolButton* button, const char* name, const char* hint) {
    button->setObjectName(QLatin1String(name));
    button->setToolTip(QLatin1String(hint));
    button->setAutoRaise(false);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    buttons_->addWidget(button);
  };
  add(run_, "SBExperimentRun", "Runs the model, or measures, for what there is to be read");
  add(previous_, "SBPreviousExperiment", "Sets the experiment before this one up");
  add(next_, "SBNextExperiment", "Sets the next experiment of this model up");
  previous_->setText(QStringLiteral("Previous"));
  next_->setText(QStringLiteral("Next"));
  layout_->addLayout(buttons_);
  connect(run_, &QAbstractButton::clicked, this, &ExperimentPanel::PressRun);
  connect(previous_, &QAbstractButton::clicked, this, [this] { emit StepWanted(-1); });
  connect(next_, &QAbstractButton::clicked, this, [this] { emit StepWanted(1); });
}

void ExperimentPanel::ShowExperiment(const Experiment& experiment, ZelModel& model,
                                     const Neighbours& neighbours) {
  setWindowTitle(QStringLiteral("Experiment with \"%1\"").arg(QtText(experiment.Model)));
  trial_ = std::make_unique<Trial>(experiment, model);
  step_ = 0;
  previous_->setEnabled(neighbours.Previous);
  next_->setEnabled(neighbours.Next);
  SetRunning(running_);
  Write();
  text_->verticalScrollBar()->setValue(0);
  show();
}

const Experiment* ExperimentPanel::Shown() const {
  return trial_ ? &trial_->Record : nullptr;
}

void ExperimentPanel::Forget() {
  trial_.reset();
}

// A line that broke with what is read would move the links below it from under the mouse.
bool ExperimentPanel::Fits(const ExperimentAnswer& answer) const {
  const QString longest =
      QStringLiteral("%1 %2: %3").arg(UnmetMark, QtText(answer.Name()), LongestText(answer));
  const QScrollBar& bar = *text_->verticalScrollBar();
  const int beside = 2 * text_->frameWidth() + (bar.isVisible() ? bar.width() : 0);
  const double text = text_->width() - beside - 2 * text_->document()->documentMargin();
  const double column = wide_ ? text / Columns - ColumnMargin : text;
  return text_->fontMetrics().horizontalAdvance(longest) <= column - Indent;
}

// Anew, where it was scrolled to.
void ExperimentPanel::Write() {
  if (!trial_) return;
  const int place = text_->verticalScrollBar()->value();
  text_->setHtml(ExperimentHtml(trial_->Record, wide_,
                                [this](const ExperimentAnswer& answer) { return Fits(answer); }));
  Refresh();
  text_->verticalScrollBar()->setValue(place);
}

void ExperimentPanel::Refresh() {
  if (!trial_) return;
  trial_->Reader.Look();
  QTextDocument& document = *text_->document();
  const std::size_t inText = trial_->Proposed.size() - trial_->Record.Tries.size();
  for (std::size_t i = 0; i < trial_->Proposed.size(); ++i) {
    const QString& mark = IsSet(trial_->Proposed[i], trial_->Model) ? SetMark
                          : i < inText                              ? NoMark
                                                                    : NoMarkInText;
    ShowSpan(document, QStringLiteral("tick%1").arg(i), mark, false);
  }
  for (std::size_t k = 0; k < trial_->Record.Steps.size(); ++k) {
    const auto& answers = trial_->Record.Steps[k].Answers;
    for (std::size_t i = 0; i < answers.size(); ++i) {
      const ExperimentReading& read = trial_->Reader.Of(k, i);
      const bool met = read.Value && answers[i].IsMetBy(*read.Value);
      const QString place = QStringLiteral("%1.%2").arg(k).arg(i);
      ShowSpan(document, QStringLiteral("met") + place, met ? MetMark : UnmetMark, !read.Present);
      ShowSpan(document, QStringLiteral("read") + place, ReadingText(read, answers[i]),
               !read.Present);
    }
  }
}

void ExperimentPanel::SetRunning(bool running) {
  // What was set before a run is known by its beginning, however short it is.
  Refresh();
  running_ = running;
  const bool measures = trial_ && trial_->Record.Shows(InstrumentKind::FftAnalyser);
  run_->setText(measures  ? QStringLiteral("Measure")
                : running ? QStringLiteral("Stop")
                          : QStringLiteral("Run"));
}

void ExperimentPanel::PressRun() {
  ZelXfer* analyser = trial_ && trial_->Record.Shows(InstrumentKind::FftAnalyser)
                          ? AnalyserOf(trial_->Model)
                          : nullptr;
  if (analyser) analyser->Run();
  ShowReadings();
  emit RunWanted(analyser || !running_);
}

void ExperimentPanel::SetValue(const QString& place) {
  const auto index = place.toUInt();
  if (!trial_ || index >= trial_->Proposed.size()) return;
  Apply(trial_->Proposed[index], trial_->Model);
  Refresh();
  const auto& steps = trial_->Record.Steps;
  std::size_t end = trial_->Record.SetUp.size();
  if (index < end) return;
  for (std::size_t k = 0; k < steps.size(); ++k) {
    end += steps[k].Settings.size();
    if (index >= end) continue;
    step_ = k;
    ShowReadings();
    return;
  }
}

// Those of the step that the user is at, in a panel too low for the whole text.
void ExperimentPanel::ShowReadings() {
  if (!trial_ || step_ >= trial_->Record.Steps.size()) return;
  const std::size_t answers = trial_->Record.Steps[step_].Answers.size();
  if (answers == 0) return;
  const auto place = [&](const char* name, std::size_t answer) {
    const QTextFragment span =
        SpanNamed(*text_->document(),
                  QStringLiteral("%1%2.%3").arg(QLatin1String(name)).arg(step_).arg(answer));
    QTextCursor cursor(text_->document());
    cursor.setPosition(span.position() + span.length());
    return text_->cursorRect(cursor);
  };
  const int above = place("met", 0).top();
  const int below = place("read", answers - 1).bottom() + 1 - text_->viewport()->height();
  QScrollBar& bar = *text_->verticalScrollBar();
  if (above < 0) {
    bar.setValue(bar.value() + above);
  } else if (below > 0) {
    bar.setValue(bar.value() + std::min(above, below));
  }
}

void ExperimentPanel::closeEvent(QCloseEvent* event) {
  event->accept();
  emit Closed();
}

void ExperimentPanel::resizeEvent(QResizeEvent* event) {
  QDockWidget::resizeEvent(event);
  const bool low = height() < ButtonsBelow;
  layout_->setDirection(low ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  buttons_->setDirection(low ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  const bool wide = width() >= ColumnsFrom;
  if (wide != std::exchange(wide_, wide)) Write();
}

bool ExperimentPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == text_ && event->type() == QEvent::Resize) Write();
  return QDockWidget::eventFilter(watched, event);
}

// The colours of links are those of the theme in which they were written.
void ExperimentPanel::changeEvent(QEvent* event) {
  QDockWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Write();
}

}  // namespace torvane
