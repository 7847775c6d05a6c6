#include "ui/panes/analyser/analyser_window.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPointer>
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
#include "plot/plane_painter.h"
#include "ui/panes/analyser/response_paint_box.h"

namespace torvane {
namespace {

using test::Messages;

class AnalyserWindowTest : public test::Desktop {
 protected:
  AnalyserWindowTest() { Show(); }

  void Show() {
    QTest::keyClick(Panel.get(), Qt::Key_F6);
    QCoreApplication::processEvents();
  }
  virtual const char* WindowName() const { return "TZelXferF"; }
  QWidget& Window() { return Find<QWidget>(WindowName()); }
  template <class T>
  T& In(const char* name) {
    return *Window().findChild<T*>(QString::fromLatin1(name));
  }
  void Press(const char* name) { In<QAbstractButton>(name).click(); }
  // Of the window's own edit, as other windows have edits of these names.
  QString Text(const char* edit) { return In<QLineEdit>(edit).text(); }
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
};

TEST_F(AnalyserWindowTest, AMeasurementPopsTheButtonUpAndIsShown) {
  Press("SBRun");
  EXPECT_EQ(Find<QLabel>("LNotice").text(), "The measurement waits for Run");
  Press("SBRun");
  EXPECT_EQ(Xfer().SampleState(), ZelXfer::State::Halted);
  for (const char* model : {"2-1 PI+ Controller", "6-1 PID Controller", "9-1 Analog Filters"}) {
    ChooseModel(model);
    Show();
    Xfer().SetOrder(10);
    EXPECT_FALSE(In<QCheckBox>("CBColorCurrent").isEnabled());
    Measure();
    EXPECT_TRUE(In<QCheckBox>("CBColorCurrent").isChecked());
    EXPECT_EQ(In<QProgressBar>("PBDataCollect").value(), 100);
    EXPECT_TRUE(Xfer().HasData(0)) << model;
  }
  Reports.Take();
  Window().close();
  EXPECT_EQ(Reports.Take(), Messages{"Note: DSA cannot be closed."});
}

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

TEST_F(AnalyserWindowTest, MemoriesAreStoredShownAndReadByTheCursors) {
  Choose("MIMemory1");
  EXPECT_EQ(Reports.Take(), Messages{"Note: There is no measurement to store."});
  Xfer().SetOrder(8);
  Measure();
  Choose("MIMemory3");
  EXPECT_TRUE(In<QCheckBox>("CBColor3").isChecked());
  EXPECT_FALSE(In<QCheckBox>("CBColor1").isEnabled());
  Press("SBTwoCursors");
  Choose("MIMemory3B");
  EXPECT_EQ(Xfer().CursorSlot(), 3);
  EXPECT_TRUE(In<QRadioButton>("RBColor3").isChecked());
  In<QRadioButton>("RBColor1").click();
  EXPECT_EQ(Reports.Take(), Messages{"Note: Cursor waveform is not showing"});
  EXPECT_TRUE(In<QRadioButton>("RBColor3").isChecked());
  Choose("MISingle");
  EXPECT_FALSE(Xfer().SplitScreen());
  Trigger("MIUndo");
  EXPECT_TRUE(In<QAction>("MISplit").isChecked());
  QTest::keyClick(&In<QWidget>("PBPlot"), Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(Xfer().CursorPixel(1), 21);
  // Another constant tells a later measurement from the stored one.
  Const("KVP").Set(0.5);
  Measure();
  std::vector<const TraceOrigin*> both{&Xfer().Origin(0), &Xfer().Origin(3)};
  EXPECT_TRUE(OriginText(Xfer().Origin(3), both).ends_with(" s, KVP = 0.72"));
  EXPECT_EQ(OriginText(Xfer().Origin(0), {both[0]}).find("KVP"), std::string::npos);

  Press("CBSpectrum");
  EXPECT_FALSE(In<QComboBox>("CmBInput").isEnabled() || In<QWidget>("SBMemory").isEnabled());
  Press("CBSpectrum");
  Xfer().SetOrder(9);
  EXPECT_FALSE(In<QCheckBox>("CBColor3").isEnabled());
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
  EXPECT_GT(row("Smallest phase margin (unity feedback)"), 45.0);
  EXPECT_EQ(table.horizontalScrollBar()->maximum(), 0);
  Press("SBButton2");
  EXPECT_NEAR(row("Smallest phase margin"), 55.62, 1.0);
  EXPECT_NEAR(row("Smallest gain margin"), 14.89, 0.3);
  table.window()->close();
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
  const FrequencyAnalyser::Indices points = Xfer().Points(0);
  for (int i = points.First + 1; Xfer().PointHz(0, i) < 300.0; ++i) {
    EXPECT_LE(std::abs(Xfer().PhaseOf(0, i) - Xfer().PhaseOf(0, i - 1)), 180.0);
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
    EXPECT_EQ(In<QWidget>("GainPage").isEnabled(), view != "MINyquist");
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
  const auto load = [&](const QString& file) {
    QTimer::singleShot(0, qApp, [file] {
      auto& dialog = *qobject_cast<QDialog*>(QApplication::activeModalWidget());
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(file);
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    Choose("MILoadMemory4");
  };
  load(path);
  EXPECT_EQ(Xfer().LoadedFrom(4), "bench.csv");
  EXPECT_TRUE(In<QCheckBox>("CBColor4").isChecked());
  EXPECT_EQ(Xfer().GainRead(4, 125.0), Xfer().GainRead(0, 125.0));
  ASSERT_EQ(ReplaceFile(path.toStdString(), "no numbers"), "");
  load(path);
  EXPECT_EQ(Reports.Take().size(), 1U);
  EXPECT_EQ(Xfer().LoadedFrom(4), "bench.csv");
}

TEST_F(AnalyserWindowTest, AxesAreLimitedSteppedAndUndone) {
  Type("EFreqMax", "100");
  Type("EFreqMin", "500");
  EXPECT_EQ(Text("EFreqMin"), "99");
  EXPECT_EQ(Find<QLabel>("LNotice").text(), "limited to 99");
  Press("FreqMinDown");
  EXPECT_EQ(Text("EFreqMin"), "85");
  Type("EFreqMax", "1");
  EXPECT_EQ(Text("EFreqMax"), "85.85");
  Type("EFreqMin", "0");
  Type("EGainScale", "-5");
  EXPECT_EQ(Reports.Take(), (Messages{"Error: Attempt to set Xfer FreqMin <= 0",
                                      "Error: Attempt to set Xfer Gain Scale <= 0"}));
  Press("LFreqAuto");
  EXPECT_EQ(Text("EFreqMax"), "250");
  Press("BGainScaleDown");
  Press("BGainOffsetUp");
  EXPECT_EQ(Xfer().GainOffset(), 10.0);
  Press("PagePhase");
  EXPECT_TRUE(In<QWidget>("EPhaseScale").isVisible());
  Press("BPhaseScaleUp");
  Press("BPhaseOffsetDown");
  EXPECT_EQ(Text("EPhaseOffset"), "-100");
  Press("BPhaseZero");
  EXPECT_EQ(Text("EPhaseOffset"), "0");
  for (int i = 0; i < 6; ++i) Trigger("MIUndo");
  EXPECT_EQ(Text("EGainScale"), "20");
  EXPECT_EQ(Text("EFreqMin"), "85");
}

TEST_F(AnalyserWindowTest, TheSetUpIsCheckedInOrder) {
  struct Case {
    const char* Edit;
    const char* Text;
    const char* Report;
  };
  const Case cases[] = {
      {"EtSample", "0", "Error: Sample Time must be > 0"},
      {"EtSample", "1m", "Error: Minimum Order = 3"},
      {"EOrder", "99", "Error: Maximum Order = 13"},
      {"EOrder", "8.5", "Error: FFT Order must be a whole number"},
      {"EOrder", "10", "Error: Start Zero Time must be >= 0"},
      {"EtStartDelay", "x", "Message Box: Cannot convert \"x\" to a Number"},
      {"EtStartDelay", "0.1", "Error: End Zero Time must be >= 0"},
      {"EtEndDelay", "2", "Error: Amplitude must be > 0"},
      {"EAmplitude", "3",
       "Error: Active Sample Time < 0%.  Raise Order or SampleTime, or Reduce End Zero Time."},
      {"EAverages", "0", "Error: Averages must be 1 to 1000"},
      {"EAverages", "2",
       "Error: Active Sample Time < 0%.  Raise Order or SampleTime, or Reduce End Zero Time."},
      {"EtEndDelay", "0.8",
       "Warning: Active Sample Time < 25%.  You may want to raise Order or SampleTime, or Reduce "
       "End Zero Time."}};
  const auto dialog = [this]() -> QDialog& {
    Press("SBSetup");
    return *Window().findChild<QDialog*>("TZelXferSetupF");
  };
  const auto put = [](QDialog& setup, const char* edit, const char* text) {
    setup.findChild<QLineEdit*>(edit)->setText(text);
  };
  QPointer<QDialog> setup = &dialog();
  for (const auto& [edit, text] : {std::pair("EOrder", "2"),
                                   {"EtStartDelay", "-1"},
                                   {"EtEndDelay", "-1"},
                                   {"EAmplitude", "0"}}) {
    put(*setup, edit, text);
  }
  for (const Case& one : cases) {
    ASSERT_TRUE(setup && setup->isVisible()) << one.Report;
    put(*setup, one.Edit, one.Text);
    if (std::string(one.Edit) == "EtEndDelay" && one.Report[0] == 'W') {
      EXPECT_EQ(setup->findChild<QLabel*>("LActiveSampleTime")->text(),
                "(Active Sample Time = 21.9%)");
    }
    setup->accept();
    EXPECT_EQ(Reports.Take(), Messages{one.Report});
  }
  EXPECT_EQ(Xfer().Order(), 10);
  EXPECT_EQ(Xfer().TEndDelay(), 0.8);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !setup; }));

  setup = &dialog();
  setup->findChild<QAbstractButton*>("BOrderUp")->click();
  put(*setup, "EtEndDelay", "0");
  setup->accept();
  EXPECT_EQ(Reports.Take(),
            Messages{"Note: End Zero Time = 0.  Most systems require some End Zero Time."});
  EXPECT_EQ(Xfer().Order(), 11);
  EXPECT_EQ(Xfer().Averages(), 2);
  EXPECT_TRUE(In<QLabel>("LWarning").isVisible());
  Trigger("MIUndo");
  EXPECT_EQ(Xfer().Setup().TEndDelay, 0.8);
  EXPECT_EQ(Xfer().Order(), 10);
}

TEST_F(AnalyserWindowTest, ChannelsAndSetUpButtonsFollowEachOther) {
  ChooseModel("3-1 PI Controller");
  Show();
  EXPECT_EQ(In<QToolButton>("SBButton2").text(), "Open");
  EXPECT_TRUE(In<QToolButton>("SBButton1").isChecked());
  EXPECT_FALSE(In<QToolButton>("SBButton3").isVisible());
  Press("SBButton2");
  EXPECT_EQ(In<QComboBox>("CmBInput").currentData(), "Error");
  auto& output = In<QComboBox>("CmBOutput");
  output.setCurrentIndex(output.findData("Command"));
  emit output.activated(output.currentIndex());
  EXPECT_FALSE(In<QToolButton>("SBButton2").isChecked());
  Trigger("MIUndo");
  EXPECT_TRUE(In<QToolButton>("SBButton2").isChecked());
}

class SweptWindowTest : public AnalyserWindowTest {
 protected:
  SweptWindowTest() {
    ChooseModel("9-1 Analog Filters");
    EXPECT_FALSE(Window().isVisible());
    QTest::keyClick(Panel.get(), Qt::Key_F7);
    Reports.Take();
  }
  const char* WindowName() const override { return "TZelSweptDSAF"; }
  ZelSweptDSA& Swept() {
    return static_cast<ZelSweptDSA&>(*Bench().Instruments(InstrumentKind::SweptSine).front());
  }
};

TEST_F(SweptWindowTest, PointsAreShownAsTheyAreMeasuredToTheEnd) {
  SweepSetup setup = Swept().Setup();
  setup.StartFreq = 100.0;
  setup.EndFreq = 10.0;
  setup.StepsPerDecade = 5;
  setup.SettleTime = 0.01;
  Swept().Apply(setup);
  EXPECT_EQ(Text("EFreqMin"), "10");
  Measure();
  EXPECT_EQ(In<QProgressBar>("PBDataCollect").format(), "6 of 6");
  EXPECT_TRUE(In<QCheckBox>("CBColorCurrent").isChecked());
  Choose("MIMemory2");
  EXPECT_TRUE(Swept().HasData(2));

  Press("SBRun");
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Swept().PointCount() > 0; }));
  Press("SBRun");
  EXPECT_EQ(Swept().SweepState(), ZelSweptDSA::State::Idle);
  EXPECT_FALSE(Swept().Measuring());
  // Traces go with the window.
  QTest::keyClick(Panel.get(), Qt::Key_F7);
  EXPECT_FALSE(In<QCheckBox>("CBColor2").isEnabled());
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(SweptWindowTest, TheSetUpIsCheckedAndSetsThePlotsLimits) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"EtSample", "-1", "Error: Attempt to set TSample < 0"},
      {"EStepsPerDecade", "0", "Error: Attempt to set Steps/Decade < 0"},
      {"EEndFreq", "0", "Error: Attempt to set End Frequency <= MinOrder"},
      {"ESettleTime", "-1", "Error: Attempt to set Settle Time < 0"},
      {"EStepsPerDecade", "5000",
       "Error: The sweep has more than 2048 points.  Reduce Steps/decade, or sweep fewer decades."},
      {"EEndFreq", "400",
       "Warning: Sample Time x End Frequency > 0.01.  The sine is held from sample to sample, and "
       "the phase, and behind a direct path the gain, will be wrong at the upper end.  You may "
       "want "
       "to reduce Sample Time to 2.5e-05 sec or less."}};
  for (const auto& [edit, text, report] : cases) {
    Press("SBSetup");
    QPointer<QDialog> setup = Window().findChild<QDialog*>("TZelSweptDSASetupF");
    EXPECT_EQ(setup->findChild<QLabel*>("LExpected")->text(), "(Expected points = 49, in 12 sec)");
    setup->findChild<QLineEdit*>(edit)->setText(text);
    if (report[0] == 'W') setup->findChild<QAbstractButton*>("BtSampleUp")->click();
    setup->accept();
    EXPECT_EQ(Reports.Take(), Messages{report});
    setup->reject();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !setup; }));
  }
  EXPECT_EQ(Swept().TSample(), 1e-4);
  EXPECT_EQ(Swept().FreqMax(), 400.0);
  Trigger("MIUndo");
  EXPECT_EQ(Swept().TSample(), 5e-5);
}

// With room for all three side by side the analyser is there from the start.
TEST_F(AnalyserWindowTest, TheAnalyserComesWithRoomAndGoesWhenItIsNotWanted) {
  QWidget& frame = *Window().parentWidget();
  EXPECT_TRUE(frame.isVisible());
  Show();
  EXPECT_FALSE(frame.isVisible());
  Panel->resize(1920, 1080);
  QCoreApplication::processEvents();
  EXPECT_FALSE(frame.isVisible());  // hidden by the user
  ChooseModel("3-1 PI Controller");
  EXPECT_TRUE(Window().isVisible());
  Panel->resize(Small);
  QCoreApplication::processEvents();
  EXPECT_TRUE(Window().isVisible());
  ChooseModel("4-1 Digital PI Controller");
  EXPECT_FALSE(Window().isVisible());
}

}  // namespace
}  // namespace torvane
