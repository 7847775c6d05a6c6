#include "ui/session/experiments.h"

#include <QDir>
#include <QMenu>
#include <QProcess>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBrowser>

#include "core/csv.h"
#include "core/instrument.h"
#include "desktop.h"
#include "instruments/step_clock.h"
#include "ui/panes/experiment_text.h"

namespace torvane::test {
namespace {

constexpr double Compared = 0.2;  // seconds of each experiment
constexpr double Spacing = 0.0005;

/// Takes all signals of a running model as "torvane-cli run --every" does.
class RowRecorder : public Instrument {
 public:
  explicit RowRecorder(ZelModel& model)
      : Instrument(InstrumentKind::Scope, "Rows"), bench_(model.Bench()) {
    clock_.Start(model.Time(), model.Solver().Step());
    bench_.AddInstrument(*this);
  }
  ~RowRecorder() override { bench_.RemoveInstrument(*this); }

  double NextTime() const override { return clock_.Request(); }
  bool Service(double t) override {
    if (!clock_.TakeDue(t, Spacing) || t > Compared + 0.5 * Spacing) return true;
    std::vector<double> row{t};
    for (const Variable* signal : bench_.Variables()) {
      if (!signal->Internal()) row.push_back(signal->DisplayValue());
    }
    Text += CsvLine(std::span<const double>(row));
    return true;
  }

  std::string Text;

 private:
  ZelBenchTop& bench_;
  StepClock clock_{StepClock::Nearest};
};

class ExperimentsTest : public Desktop {
 protected:
  /// What the command line measures of the experiment's file, without its captions.
  static std::string Reference(const QString& file) {
    QProcess program;
    program.start(TORVANE_CLI, {"run", file, "--until", QString::number(Compared), "--every",
                                QString::number(Spacing)});
    program.waitForFinished(120000);
    const std::string text = program.readAllStandardOutput().toStdString();
    return text.substr(text.find('\n') + 1);
  }

  std::string RunForRows() {
    RowRecorder rows(*Panel->Model());
    RunFor(Compared + 2 * Spacing);
    return rows.Text;
  }
};

TEST_F(ExperimentsTest, AFileThatIsGoneCostsNothingAndNoFolderIsNotThePresentOne) {
  const QTemporaryDir folder;
  const QString file = OfferedExperiments(Data).Of("2-1 PI+ Controller").front().File;
  const QString examples = folder.filePath("examples/");
  ASSERT_TRUE(QDir().mkpath(examples));
  for (const QString& name : {file, QString(file).replace(".tvf", ".experiment")}) {
    ASSERT_TRUE(QFile::copy(name, examples + QFileInfo(name).fileName()));
  }
  Panel = std::make_unique<ControlPanel>(DataFolder(folder.path()));
  Panel->show();
  Play("set KVP 1.5 ->");
  emit Find<QMenu>("MExperiments").aboutToShow();
  ASSERT_TRUE(QFile::remove(examples + QFileInfo(file).fileName()));
  Begin(0);
  EXPECT_TRUE(WaitFor([&] { return Reports.Take().size() == 1; }));
  Play("-> saved Constant,KVP,1.5");
  QDir::setCurrent(QFileInfo(file).path());
  const DataFolder none("/nowhere");
  EXPECT_TRUE(OfferedExperiments(none).Of("2-1 PI+ Controller").empty());
}

// In a step of two values the second is to be where it was when the first has been clicked.
TEST_F(ExperimentsTest, WhatIsReadMovesNoLink) {
  ChooseModel("16-1 Cascade Position Loop");
  Begin(1);
  Play("size 1280,800 -> MExperiment has Maximum of pE:\\n");
  const auto& document = *Find<QTextBrowser>("MExperiment").document();
  const double height = document.size().height();
  for (const char* line :
       {"click SBExperimentRun -> MExperiment has 0.00053 Revs",
        "click MExperiment[KVI=250] -> MExperiment has 0.00053 Revs before",
        "click MExperiment[KVFR=65] -> MExperiment has 0.00065 Revs\\nWhat it shows",
        "set KP 300 -> MExperiment has , not 0.00065 Revs"}) {
    Play(line);
    EXPECT_EQ(document.size().height(), height) << line;
  }
}

TEST_F(ExperimentsTest, WhatIsReadOfAStepComesIntoSight) {
  ChooseModel("3-1 PI Controller");
  Begin(3);
  Play("size 1280,800 -> MExperiment has Phase Margin Frequency");
  auto& text = Find<QTextBrowser>("MExperiment");
  text.setFixedHeight(90);
  QCoreApplication::processEvents();
  QScrollBar& bar = *text.verticalScrollBar();
  const auto sees = [&](const char* span) {
    QTextCursor cursor(text.document());
    cursor.setPosition(SpanNamed(*text.document(), span).position());
    return text.viewport()->rect().contains(text.cursorRect(cursor));
  };
  for (const auto& [line, span, from] :
       {std::tuple("click SBExperimentRun ->", "met0.0", bar.maximum()),
        std::tuple("click MExperiment[KI=200] ->", "met1.0", 0),
        std::tuple("click SBExperimentRun ->", "met1.0", 0)}) {
    bar.setValue(from);
    EXPECT_FALSE(sees(span)) << line;
    Play(line);
    EXPECT_TRUE(sees(span)) << line;
  }
}

// One after the other, as a user does them, so that each meets what the one before has left.
TEST_F(ExperimentsTest, EachRunsAsItsFileDoesOnTheCommandLine) {
  QSignalSpy loaded(&Panel->Work(), &Session::FileLoaded);
  for (int i = 0; i < Find<QComboBox>("ModelCmB").count(); ++i) {
    const QString model = Find<QComboBox>("ModelCmB").itemText(i);
    ChooseModel(model);
    RunFor(0.5);
    const auto experiments = OfferedExperiments(Data).Of(model.toStdString());
    EXPECT_GE(experiments.size(), 3U) << model.toStdString();
    for (std::size_t k = 0; k < experiments.size(); ++k) {
      loaded.clear();
      Begin(static_cast<int>(k));
      ASSERT_TRUE(WaitFor([&] { return loaded.count() > 0; }));
      EXPECT_TRUE(RunForRows() == Reference(experiments[k].File))
          << experiments[k].File.toStdString();
      Play("-> CBVertShow on; InstrumentArea apart");
    }
  }
}

}  // namespace
}  // namespace torvane::test
