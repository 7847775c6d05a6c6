#include "ui/panes/wave_gen_window.h"

#include <QComboBox>
#include <QMdiSubWindow>

#include "desktop.h"

namespace torvane {
namespace {

class WaveGenWindowTest : public test::Desktop {
 protected:
  ZelWave& Wave() {
    return static_cast<ZelWave&>(*Bench().Instruments(InstrumentKind::WaveGenerator).front());
  }
  const WaveSettings& Set() { return Wave().Settings(); }
};

TEST_F(WaveGenWindowTest, ShowsTheGeneratorsSettings) {
  EXPECT_EQ(Find<QWidget>("TZelWaveGenF").windowTitle(), "Waveform Generator");
  EXPECT_EQ(Find<QComboBox>("CmBWaveform").currentIndex(), Set().Index);
  EXPECT_EQ(Find<QComboBox>("CmBWaveform").count(), ZelWave::WaveformCount);
  EXPECT_EQ(Text("EFreqHz").toDouble(), Set().FreqHz);
  EXPECT_EQ(Text("EAmplitude").toDouble(), Set().Amplitude);
}

TEST_F(WaveGenWindowTest, EditsCommitOnEnterAndOnLeaving) {
  Type("EFreqHz", "-5");
  EXPECT_EQ(Set().FreqHz, 5.0);
  EXPECT_EQ(Text("EFreqHz"), "5");
  Type("EAmplitude", "3.25", false);
  EXPECT_NE(Set().Amplitude, 3.25);
  Find<QWidget>("EOffset").setFocus();
  EXPECT_EQ(Set().Amplitude, 3.25);
  Type("EDutyCycle", "130");
  EXPECT_EQ(Text("EDutyCycle"), "100");
  Type("EPhaseDeg", "-720");
  EXPECT_EQ(Set().PhaseDeg, -720.0);
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(WaveGenWindowTest, TextThatIsNoNumberIsReportedOnceAndTakenBack) {
  Type("EOffset", "2");
  Type("EOffset", "1,5");
  EXPECT_EQ(Reports.Take(), test::Messages{"Message Box: Cannot convert \"1,5\" to a Number"});
  EXPECT_EQ(Set().Offset, 2.0);
  EXPECT_EQ(Text("EOffset"), "2");
  Type("EOffset", "7", false);
  QTest::keyClick(&Find<QWidget>("EOffset"), Qt::Key_Escape);
  Find<QWidget>("EFreqHz").setFocus();
  EXPECT_EQ(Set().Offset, 2.0);
}

TEST_F(WaveGenWindowTest, AnEditThatIsOnlyPassedKeepsTheDigitsItDoesNotShow) {
  Wave().SetAmplitude(1.23456789);
  Find<TZelWaveGenF>("TZelWaveGenF").SettingsChanged();
  EXPECT_EQ(Text("EAmplitude"), "1.2346");
  Find<QWidget>("EAmplitude").setFocus();
  QTest::keyClick(&Find<QWidget>("EAmplitude"), Qt::Key_Return);
  Find<QWidget>("EOffset").setFocus();
  EXPECT_EQ(Set().Amplitude, 1.23456789);
}

TEST_F(WaveGenWindowTest, ButtonsStepEachSetting) {
  Type("EFreqHz", "3");
  Click("SBFreqUp");
  EXPECT_EQ(Text("EFreqHz"), "3.5");
  Click("SBFreqDown");
  Click("SBFreqDown");
  EXPECT_EQ(Text("EFreqHz"), "2.5");
  Type("EAmplitude", "-2");
  Click("SBAmplitudeUp");
  EXPECT_EQ(Text("EAmplitude"), "-2.5");
  Click("SBAmplitudeDown");
  Click("SBOffsetUp");
  EXPECT_EQ(Text("EOffset"), "2");
  Click("BOffsetSign");
  EXPECT_EQ(Text("EOffset"), "-2");
  Click("SBOffsetDown");
  EXPECT_EQ(Text("EOffset"), "-4");
  Click("BAmpSign");
  EXPECT_EQ(Text("EAmplitude"), "2");
  Click("SBPhaseDown");
  EXPECT_EQ(Text("EPhaseDeg"), "-45");
  Click("BPhase");
  EXPECT_EQ(Text("EPhaseDeg"), "45");
  Click("SBPhaseUp");
  EXPECT_EQ(Text("EPhaseDeg"), "90");
  Type("EDutyCycle", "95");
  Click("SBDutyCycleUp");
  EXPECT_EQ(Text("EDutyCycle"), "100");
  Click("SBDutyCycleDown");
  EXPECT_EQ(Text("EDutyCycle"), "90");
}

TEST_F(WaveGenWindowTest, TheListChoosesAndADoubleClickGoesRound) {
  QComboBox& list = Find<QComboBox>("CmBWaveform");
  list.setCurrentIndex(8);
  EXPECT_EQ(Set().Index, 8);
  QTest::mouseDClick(&list, Qt::LeftButton);
  EXPECT_EQ(Set().Index, 0);
  EXPECT_EQ(list.currentText(), "Sine");
}

TEST_F(WaveGenWindowTest, CannotBeClosed) {
  auto* frame = qobject_cast<QMdiSubWindow*>(Find<QWidget>("TZelWaveGenF").parentWidget());
  ASSERT_NE(frame, nullptr);
  EXPECT_FALSE(frame->close());
  EXPECT_EQ(Reports.Take(), test::Messages{"Note: Waveform Generator cannot be closed."});
  EXPECT_TRUE(Find<QWidget>("TZelWaveGenF").isVisible());
}

}  // namespace
}  // namespace torvane
