#include "ui/panes/meter_window.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTemporaryDir>

#include "desktop.h"
#include "library/wave.h"
#include "ui/desk/workspace.h"

namespace torvane {
namespace {

using test::Messages;

class MeterWindowTest : public test::Desktop {
 protected:
  const std::vector<Instrument*>& Meters() { return Bench().Instruments(InstrumentKind::Meter); }
  ZelMeter& Meter() { return static_cast<ZelMeter&>(*Meters().front()); }
  QList<TZelMeterF*> Windows() { return Panel->findChildren<TZelMeterF*>(); }
  void Choose(const char* list, const char* name) {
    Find<QComboBox>(list).setCurrentText(QLatin1String(name));
  }
  bool Checked(const char* button) { return Find<QAbstractButton>(button).isChecked(); }
  bool Enabled(const char* control) { return Find<QWidget>(control).isEnabled(); }
  /// Runs the model until simulated time `t`.
  void RunUntil(double t) {
    Panel->Run();
    EXPECT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() >= t; }, 20000));
    Panel->Stop();
    Panel->Model()->Bench().RefreshInstruments();
  }
};

TEST_F(MeterWindowTest, TheMenuAddsFifteenMetersAndEachLeavesWithItsWindow) {
  EXPECT_EQ(Find<QAction>("MIAddMeter").shortcut(), QKeySequence(Qt::Key_F5));
  for (int i = 0; i < ZelMeter::MaxMeters; ++i) Trigger("MIAddMeter");
  EXPECT_TRUE(Reports.Take().empty());
  Trigger("MIAddMeter");
  EXPECT_EQ(Reports.Take(), Messages{"Error: Too many meters"});
  ASSERT_EQ(Windows().size(), ZelMeter::MaxMeters);
  EXPECT_TRUE(Meter().Name().starts_with("Meter from Main Menu 20"));
  EXPECT_TRUE(Panel->Work().Changed());
  // None of them leads another window off the workspace.
  auto& workspace = Find<Workspace>("InstrumentArea");
  workspace.Toggle(InstrumentKind::FftAnalyser);
  for (const InstrumentFrame* frame : workspace.Frames()) {
    if (!frame->IsShown()) continue;
    EXPECT_TRUE(workspace.rect().contains(frame->geometry())) << frame->windowTitle().toStdString();
  }

  // Those that are changed and closed leave file, bench and history.
  Windows().front()->Meter().SetLpf(5.0);
  EXPECT_TRUE(Bench().History().CanUndo());
  for (TZelMeterF* window : Windows()) window->parentWidget()->close();
  EXPECT_TRUE(QTest::qWaitFor([&] { return Windows().isEmpty(); }));
  EXPECT_TRUE(Meters().empty());
  EXPECT_FALSE(Bench().History().CanUndo());
  EXPECT_FALSE(Panel->Work().Changed());
}

TEST_F(MeterWindowTest, EverySettingIsTheMetersAndCanBeUndone) {
  Trigger("MIAddMeter");
  Click("SBShowSetup");
  auto& frame = *qobject_cast<QMdiSubWindow*>(Windows().front()->parentWidget());
  Choose("CmBVariable", "vM");
  EXPECT_EQ(frame.windowTitle(), "vM");
  EXPECT_EQ(Text("EUnits"), "RPM");
  const struct {
    const char* Edit;
    double (ZelMeter::*Value)() const;
  } numbers[] = {{"ETSample", &ZelMeter::TSample},
                 {"ELpf", &ZelMeter::Lpf},
                 {"EACHpf", &ZelMeter::AcHpf},
                 {"EHarmonicFreq", &ZelMeter::HarmonicFreq},
                 {"ETWindow", &ZelMeter::TWindow},
                 {"EExcitationMag", &ZelMeter::ExcitationMag},
                 {"EExcitationOff", &ZelMeter::ExcitationOff},
                 {"EExcitationMult", &ZelMeter::ExcitationMult}};
  for (const auto& number : numbers) {
    const double before = (Meter().*number.Value)();
    Type(number.Edit, "12.5");
    EXPECT_EQ((Meter().*number.Value)(), 12.5) << number.Edit;
    Trigger("MIUndo");
    EXPECT_EQ((Meter().*number.Value)(), before) << number.Edit;
    Trigger("MIRedo");
    EXPECT_EQ(Text(number.Edit), "12.5");
  }
  Type("ETSample", "-1");
  EXPECT_EQ(Reports.Take(), Messages{"Error: Attempt to set Meter Sample Time < 0"});
  EXPECT_EQ(Text("ETSample"), "12.5");

  const std::pair<const char*, double> steps[] = {{"BHarmNudgeUp", 12.6},
                                                  {"BHarmDinkyNudgeUp", 12.61},
                                                  {"BHarmDinkyNudgeDown", 12.6},
                                                  {"BHarmNudgeDown", 12.5},
                                                  {"BHarmUp", 14.0},
                                                  {"BHarmDown", 12.0}};
  for (const auto& [button, frequency] : steps) {
    Find<QAbstractButton>(button).click();
    EXPECT_EQ(Meter().HarmonicFreq(), frequency) << button;
  }
  Find<QAbstractButton>("RBCorr").click();
  EXPECT_TRUE(Enabled("CmBCorrVar"));
  Choose("CmBCorrVar", "vC");
  EXPECT_EQ(Find<QLabel>("LKind").text(), "Correlation with vC");
  EXPECT_EQ(Text("EUnits"), "(Unitless)");
  Find<QAbstractButton>("RBHarmonic").click();
  EXPECT_FALSE(Enabled("CmBCorrVar") || Enabled("CBUseDB"));
  Find<QAbstractButton>("CBHarmonicXfer").click();
  Choose("CmBHarmonicXferVar", "iC");
  Find<QAbstractButton>("RBAC").click();
  EXPECT_EQ(Find<QLabel>("LKind").text(), "12 Hz from iC, AC");
  EXPECT_EQ(Text("EUnits"), "RPM/Amps");
  Find<QAbstractButton>("CBUseDB").click();
  EXPECT_EQ(Text("EUnits"), "dB");
  Find<QAbstractButton>("CBUseExcitation").click();
  EXPECT_TRUE(Meter().UseExcitation() && Meter().UseDb() && Meter().AcCoupled());
  while (Bench().History().CanUndo()) Trigger("MIUndo");
  EXPECT_TRUE(Checked("RBRMS") && Checked("RBDC"));
  EXPECT_FALSE(Checked("CBUseExcitation") || Checked("CBHarmonicXfer") || Checked("SBShowSetup"));
  EXPECT_EQ(frame.windowTitle(), "vC");
}

TEST_F(MeterWindowTest, ReadsWhileTheModelRuns) {
  ChooseModel("9-1 Analog Filters");
  auto& wave = static_cast<ZelWave&>(*Bench().Instruments(InstrumentKind::WaveGenerator).front());
  wave.SetWaveform(0);
  wave.SetFreqHz(20.0);
  wave.SetAmplitude(3.0);
  wave.SetOffset(0.0);
  Trigger("MIAddMeter");
  Meter().SetVariable("vC");
  Meter().SetLpf(2.0);
  RunUntil(0.6);
  // The low-pass leaves a ripple of about a twentieth of the squared sine.
  EXPECT_NEAR(Text("EValue").toDouble(), 3.0 / std::sqrt(2.0), 0.12);
  EXPECT_EQ(Text("EValue").size(), 6);
  EXPECT_FALSE(Find<QWidget>("EHarmonicAngle").isVisible());
  Meter().SetKind(MeterKind::Harmonic);
  Meter().SetHarmonicFreq(20.0);
  Meter().SetTWindow(0.1);
  Meter().SetHarmonicXfer(true);
  Meter().SetVariable("vLP1");
  Meter().SetHarmonicXferVar("vC");
  RunUntil(1.2);
  // 45 Hz; samples a step late cost up to a degree and one per cent.
  EXPECT_NEAR(Text("EValue").toDouble(), 1.0 / std::hypot(1.0, 20.0 / 45.0), 0.01);
  EXPECT_TRUE(Find<QWidget>("EHarmonicAngle").isVisible());
  EXPECT_NEAR(Text("EHarmonicAngle").toDouble(), -23.96, 1.0);
}

TEST_F(MeterWindowTest, MetersOfAFileGetTheirWindows) {
  const QTemporaryDir folder;
  const QString file = folder.filePath("meters.tvf");
  Trigger("MIAddMeter");
  Meter().SetVariable("iC");
  Meter().SetShowSetup(true);
  Meter().Placement = {WindowState::Normal, 420, 300, 40, 360};
  ASSERT_TRUE(Panel->Work().Save(file));
  for (const char* model : {"2-1 PI+ Controller", "3-1 PI Controller"}) {
    ChooseModel(model);
    EXPECT_TRUE(Windows().isEmpty());
    ASSERT_TRUE(Panel->Work().Open(file));
    Reports.Take();
    ASSERT_EQ(Windows().size(), 1) << model;
    EXPECT_EQ(Windows().front()->windowTitle(), "iC");
    EXPECT_TRUE(Find<QWidget>("PCSetup").isVisible());
    EXPECT_EQ(Windows().front()->parentWidget()->pos(), QPoint(300, 40));
  }
  // The Window menu hides it and the meter goes on.
  QMenu& menu = Find<QMenu>("MWindow");
  emit menu.aboutToShow();
  for (QAction* item : menu.actions()) {
    if (item->text() == "iC") item->trigger();
  }
  EXPECT_FALSE(Windows().front()->isVisible());
  EXPECT_EQ(Meters().size(), 1U);
}

}  // namespace
}  // namespace torvane
