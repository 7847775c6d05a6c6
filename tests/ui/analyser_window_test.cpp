#include "ui/panes/analyser/analyser_window.h"

#include <QCheckBox>
#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollBar>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>

#include "core/constant.h"
#include "core/files/atomic_save.h"
#include "desktop.h"
#include "instruments/analyser/shown_responses_csv.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "plot/picture_export.h"
#include "plot/response/plane_painter.h"
#include "ui/panes/analyser/response_paint_box.h"

namespace torvane {
namespace {

using test::Messages;

class AnalyserWindowTest : public test::Desktop {
 protected:
  AnalyserWindowTest() { Show(); }

  void Show() {
    QTest::keyClick(Panel.get(), Qt::Key_F7);
    QCoreApplication::processEvents();
  }
  QWidget& Window() { return Find<QWidget>(WindowName); }
  template <class T>
  T& In(const char* name) {
    return *Window().findChild<T*>(QString::fromLatin1(name));
  }
  void Press(const char* name) { In<QAbstractButton>(name).click(); }
  void Type(const char* edit, const char* text) {
    In<QLineEdit>(edit).setText(text);
    QTest::keyClick(&In<QLineEdit>(edit), Qt::Key_Return);
  }
  void Choose(const char* item) { In<QAction>(item).trigger(); }
  ZelXfer& Xfer() {
    return static_cast<ZelXfer&>(*Bench().Instruments(InstrumentKind::FftAnalyser).front());
  }
  // A record of the model as the user takes it, the scope running along.
  void Measure() {
    Press("SBRun");
    Click("SBRun");
    QElapsedTimer timer;
    timer.start();
    while (In<QToolButton>("SBRun").isChecked() && timer.elapsed() < 60000) {
      QCoreApplication::processEvents();
    }
    EXPECT_FALSE(In<QToolButton>("SBRun").isChecked());
    Click("SBStop");
  }

  const char* WindowName = "TZelXferF";
};

// The axis is narrow enough for a column to be a small part of a bin.
TEST_F(AnalyserWindowTest, TheOnePolesBandwidthIsFoundToWithinABin) {
  ChooseModel("9-1 Analog Filters");
  Show();
  Xfer().SetOrder(9);
  Measure();
  Type("EFreqMin", "30");
  Type("EFreqMax", "60");
  Press("SBOneCursor");
  Press("SBFind");
  EXPECT_EQ(Reports.Take(), Messages{});
  const double hz = Xfer().AxisFrequency(static_cast<double>(Xfer().CursorPixel(0)) /
                                         In<ResponsePaintBox>("PBPlot").PlotWidth());
  EXPECT_NEAR(hz, Const("1-Pole Freq").Value(), Xfer().BinFrequency(1));
  auto& table = *Window().findChild<QTableWidget*>("SGXferCursors");
  EXPECT_NEAR(table.item(0, 2)->text().toDouble(), -3.0, 0.1);
}

TEST_F(AnalyserWindowTest, FindSaysWhatItCannotFind) {
  ChooseModel("9-1 Analog Filters");
  Show();
  Xfer().SetOrder(10);
  Measure();
  const auto find = [this](const char* text) {
    auto& list = In<QComboBox>("CmBFindType");
    list.setCurrentText(text);
    QTest::keyClick(&list, Qt::Key_Return);
    return Reports.Take();
  };
  find("0 dB");
  EXPECT_TRUE(Find<QLabel>("LNotice").text().contains("cursor 1"));
  Press("SBOneCursor");
  EXPECT_EQ(find("-90 dB"), Messages{"Note: Could not find -90 dB on screen"});
  EXPECT_EQ(find("-45 deg"), Messages{});
  EXPECT_EQ(find("widest"), Messages{"Note: Cannot read Autofind selection"});
  EXPECT_EQ(find("x dB"), Messages{"Note: Cannot read Autofind selection"});
  EXPECT_EQ(Xfer().FindType(), "x dB");
  EXPECT_EQ(find("Gain Max"), Messages{});
  Press("SBTwoCursors");
  const auto between = [&](int first, int second, const char* text) {
    Xfer().SetCursorPixel(0, first);
    Xfer().SetCursorPixel(1, second);
    return find(text);
  };
  EXPECT_EQ(between(50, 50, "0 dB"),
            Messages{"Note: Cursors are in same position.\nMove one cursor or configure screen for "
                     "one cursor."});
  // Between two neighbouring columns there is no crossing, and both extremes are at the cursors.
  const int last = In<ResponsePaintBox>("PBPlot").PlotWidth() * 2 / 3;
  EXPECT_EQ(between(last, last + 1, "-50 dB"),
            Messages{"Note: Could not find -50 dB between cursors"});
  const Messages greatest = between(last, last + 1, "Gain Max");
  const Messages least = find("Gain Min");
  const bool falls = greatest == Messages{"Note: Gain Maximum at Cursor1"};
  EXPECT_EQ(least,
            Messages{falls ? "Note: Gain Minimum at Cursor2" : "Note: Gain Minimum at Cursor1"});
  EXPECT_EQ(between(last + 1, last, "Gain Max"),
            Messages{falls ? "Note: Gain Maximum at Cursor2" : "Note: Gain Maximum at Cursor1"});
  EXPECT_EQ(between(last, 20, "-0.5 dB"), Messages{});
  EXPECT_LT(Xfer().CursorPixel(0), last);

  Press("CBColorCurrent");
  EXPECT_EQ(Reports.Take(), Messages{"Note: Turning off cursor waveform"});
  EXPECT_EQ(find("Gain Max"), Messages{"Note: Cursor waveform is not showing"});
}

// Theory gives a phase margin of 55.62 degrees and a gain margin of 14.89 dB.
TEST_F(AnalyserWindowTest, MarginsAreReadOffTheTraceOfTheCursors) {
  ChooseModel("3-1 PI Controller");
  Show();
  Press("SBMargins");
  auto& table = In<QTableWidget>("SGMargins");
  EXPECT_EQ(table.item(0, 0)->text(), "Unavailable");
  Xfer().SetOrder(10);
  Press("SBButton2");
  Measure();
  EXPECT_TRUE(In<QLabel>("LTrust").isVisible());
  Press("SBButton1");
  Xfer().SetOrder(13);
  Xfer().SetTSample(0.0001);
  Measure();
  EXPECT_FALSE(In<QLabel>("LTrust").isVisible());
  QCoreApplication::processEvents();
  EXPECT_EQ(table.item(0, 0)->text(), "Bandwidth");
  EXPECT_FALSE(table.horizontalScrollBar()->isVisible() || table.verticalScrollBar()->isVisible());
  EXPECT_GE(table.columnWidth(3), static_cast<QAbstractItemView&>(table).sizeHintForColumn(3));
  const auto row = [&](const QString& name) {
    const auto found = table.findItems(name, Qt::MatchExactly);
    return found.isEmpty() ? -1000.0 : table.item(found.front()->row(), 1)->text().toDouble();
  };
  Xfer().SetView({.OpenLoop = true});
  QCoreApplication::processEvents();
  EXPECT_GT(row("Smallest phase margin (unity feedback)"), 45.0);
  Xfer().SetView({});
  EXPECT_EQ(table.horizontalScrollBar()->maximum(), 0);
  Press("SBButton2");
  EXPECT_NEAR(row("Smallest phase margin"), 55.62, 1.0);
  EXPECT_NEAR(row("Smallest gain margin"), 14.89, 0.3);
  Find<QDockWidget>("TZelMarginsF").close();
  EXPECT_FALSE(In<QAbstractButton>("SBMargins").isChecked());
}

// The closed loop's trace becomes that of the open one, wherever it is read; a click in a view
// without a frequency axis finds the point that it hits.
TEST_F(AnalyserWindowTest, TheViewShowsTheOpenLoopThatBelongsToAClosedOne) {
  ChooseModel("3-1 PI Controller");
  Show();
  Xfer().SetOrder(13);
  Xfer().SetTSample(0.0001);
  Press("SBButton2");
  Measure();
  Press("SBOneCursor");
  Choose("MIMemory1");
  std::vector<ResponsePoint> direct;
  for (const double hz : {20.0, 60.0, 200.0}) {
    direct.push_back({hz, *Xfer().GainRead(0, hz), *Xfer().PhaseRead(0, hz)});
  }
  Xfer().SetInput("Command");
  Xfer().SetOutput("Feedback");
  const double closed = *Xfer().GainRead(0, 60.0);
  Choose("MIOpenLoop");
  // Of one record, in which the error is the difference of both: what is left is single precision.
  for (const ResponsePoint& open : direct) {
    EXPECT_NEAR(*Xfer().GainRead(0, open.Hz), open.Gain, 0.01);
    EXPECT_NEAR(*Xfer().PhaseRead(0, open.Hz), open.Phase, 0.1);
  }
  Choose("MIUnwrapped");
  Choose("MIGroupDelay");
  const Response& shown = Xfer().ShownResponse(0);
  for (int i = shown.First() + 1; shown.At(i)->Hz < 300.0; ++i) {
    EXPECT_LE(std::abs(shown.At(i)->Phase - shown.At(i - 1)->Phase), 180.0);
  }
  auto& box = In<ResponsePaintBox>("PBPlot");
  const auto cursorHz = [&] {
    return Xfer().AxisFrequency(1.0 * Xfer().CursorPixel(0) / box.PlotWidth());
  };
  EXPECT_NEAR(In<QTableWidget>("SGXferCursors").item(0, 4)->text().toDouble(),
              *Xfer().DelayRead(0, cursorHz()), 1e-4);
  QImage before = PictureImage(ResponsePicture(Xfer()));
  for (const std::string view : {"MINyquist", "MINichols", "MIBode"}) {
    Choose(view.c_str());
    const QImage picture = PictureImage(ResponsePicture(Xfer()));
    EXPECT_NE(picture, before) << view;
    EXPECT_NE(picture, PictureImage(ResponsePicture(Xfer(), {TraceColours::Standard, true})));
    before = picture;
    if (view == "MIBode") continue;
    PlanePainter plane(Xfer());
    plane.Layout(box.size(), 1.0);
    QTest::mouseClick(&box, Qt::LeftButton, {}, plane.PlaceAt(60.0)->toPoint());
    EXPECT_NEAR(cursorHz(), 60.0, 3.0) << view;
  }
  Choose("MIOpenLoop");
  EXPECT_EQ(*Xfer().GainRead(0, 60.0), closed);
  Trigger("MIUndo");
  EXPECT_TRUE(In<QAction>("MIOpenLoop").isChecked());
}

// What was measured once lies over what is measured later.
TEST_F(AnalyserWindowTest, TheShownTracesGoToAFileAndBackIntoAMemory) {
  Xfer().SetOrder(6);
  Measure();
  Choose("MIMemory1");
  const std::string csv = ShownResponsesCsv(Xfer());
  EXPECT_EQ(csv.substr(0, csv.find('\n')), "Frequency,Gain,Phase,Memory 1 Gain,Memory 1 Phase");
  const QTemporaryDir folder;
  const QString path = folder.filePath("bench.csv");
  ASSERT_EQ(ReplaceFile(path.toStdString(), csv), "");
  const auto load = [&](const QString& file, const char* memory = "MILoadMemory4") {
    QTimer::singleShot(0, qApp, [file] {
      auto& dialog = *qobject_cast<QDialog*>(QApplication::activeModalWidget());
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(file);
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    Choose(memory);
  };
  load(path);
  EXPECT_EQ(Reports.Take().size(), 1U);  // the other response has no memory
  EXPECT_EQ(Xfer().LoadedFrom(4), "bench.csv");
  EXPECT_TRUE(In<QCheckBox>("CBColor4").isChecked());
  EXPECT_EQ(Xfer().GainRead(4, 125.0), Xfer().GainRead(0, 125.0));
  ASSERT_EQ(ReplaceFile(path.toStdString(), "no numbers"), "");
  load(path);
  EXPECT_EQ(Reports.Take().size(), 1U);
  EXPECT_EQ(Xfer().LoadedFrom(4), "bench.csv");
  // A unit that the file does not say is asked for: a ratio unless something else is chosen.
  ASSERT_EQ(ReplaceFile(path.toStdString(), "w,mag,phase\n628.3185307179587,0.1,-90\n"), "");
  QTimer answer;
  QObject::connect(&answer, &QTimer::timeout, qApp, [] {
    auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog && dialog->objectName() == "ResponseUnitsDialog") dialog->accept();
  });
  answer.start(1);
  load(path);
  ASSERT_EQ(Xfer().ResponseAt(4).Curve().size(), 1U);
  EXPECT_NEAR(Xfer().ResponseAt(4).Curve()[0].Hz, 100.0, 1e-9);
  EXPECT_NEAR(Xfer().ResponseAt(4).Curve()[0].Gain, -20.0, 1e-9);
  // What it does say stays so.
  ASSERT_EQ(ReplaceFile(path.toStdString(), "f,mag (dB),phase\n100,-30,-1\n"), "");
  load(path);
  EXPECT_EQ(Xfer().ResponseAt(4).Curve()[0].Gain, -30.0);
  // A second response does not replace a memory unasked.
  ASSERT_EQ(ReplaceFile(path.toStdString(), "f,Gain,Phase,b Gain,b Phase\n100,1,2,3,4\n"), "");
  Reports.Answer = false;
  load(path, "MILoadMemory3");
  EXPECT_EQ(Reports.Take().size(), 1U);
  EXPECT_EQ(Xfer().ResponseAt(3).Curve()[0].Gain, 1.0);
  EXPECT_EQ(Xfer().ResponseAt(4).Curve()[0].Gain, -30.0);
}

TEST_F(AnalyserWindowTest, PointsOfASweepAreShownAsTheyAreMeasuredToTheEnd) {
  ChooseModel("9-1 Analog Filters");
  WindowName = "TZelSweptDSAF";
  QTest::keyClick(Panel.get(), Qt::Key_F8);
  auto& swept = First<ZelSweptDSA>(InstrumentKind::SweptSine);
  SweepSetup setup = swept.Setup();
  setup.StartFreq = 100.0;
  setup.EndFreq = 10.0;
  setup.StepsPerDecade = 5;
  setup.SettleTime = 0.01;
  swept.Apply(setup);
  Measure();
  Play("-> TZelSweptDSAF/PBDataCollect.format=6 of 6; TZelSweptDSAF/EFreqMin=10");
  EXPECT_TRUE(In<QCheckBox>("CBColorCurrent").isChecked());
  Choose("MIMemory2");
  EXPECT_TRUE(swept.HasData(2));

  Press("SBRun");
  Click("SBRun");
  ASSERT_TRUE(WaitFor([&] { return swept.PointCount() > 0; }));
  Press("SBRun");
  EXPECT_EQ(swept.SweepState(), ZelSweptDSA::State::Idle);
  EXPECT_FALSE(swept.Measuring());
  // Traces go with the window.
  QTest::keyClick(Panel.get(), Qt::Key_F8);
  EXPECT_FALSE(In<QCheckBox>("CBColor2").isEnabled() || Window().isVisible());
}

}  // namespace
}  // namespace torvane
