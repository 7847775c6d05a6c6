#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

constexpr double Corner = 45.0;  // Hz, the default of 9-1's first-order filter

// H = 1 / (1 + jf/fc), in dB and degrees.
double FilterGain(double f) {
  return -10.0 * std::log10(1.0 + (f / Corner) * (f / Corner));
}
double FilterPhase(double f) {
  return -std::atan(f / Corner) * 180.0 / std::numbers::pi;
}

TEST(Sweep, MeasuresAFilterPointByPoint) {
  constexpr double Tick = 0.0001;
  const Outcome outcome = RunCliLine(
      "sweep '9-1 Analog Filters' --input vC --output vLP1 --from 10 --to 100"
      " --per-decade 5 --settle 0.2 --measure 30 --tsample 0.0001 --amplitude 2");
  ASSERT_EQ(outcome.Code, 0) << outcome.Err;
  const Table table = ParseTable(outcome.Out);
  EXPECT_EQ(table.Header, (std::vector<std::string>{"Frequency", "Gain", "Phase"}));
  // From 10 Hz, five steps to the decade's end, which the slight excess of each step passes.
  ASSERT_EQ(table.Rows(), 6U);
  EXPECT_EQ(table.Columns[0].front(), 10.0);
  for (std::size_t i = 0; i < table.Rows(); ++i) {
    const double f = table.Columns[0][i];
    EXPECT_NEAR(f, 10.0 * std::pow(10.0, static_cast<double>(i) / 5.0), 1e-5 * f);
    // The input is held between two ticks and read at the end of its hold, half a tick later than
    // the sine that the filter sees. Beside that, the window of whole periods is rounded to ticks,
    // of which the highest frequency has 100 a period: a tenth of a dB and a degree.
    EXPECT_NEAR(table.Columns[1][i], FilterGain(f), 0.1) << f;
    EXPECT_NEAR(table.Columns[2][i], FilterPhase(f) + 180.0 * f * Tick, 1.0) << f;
  }
}

std::vector<double> MeterReading(const std::string& options) {
  const Outcome outcome = RunCliLine(
      "meter '9-1 Analog Filters' --wave Waveform=Sine --wave "
      "FreqHz=20 --wave Amplitude=3 --wave Offset=0 --until 3 " +
      options);
  EXPECT_EQ(outcome.Code, 0) << outcome.Err;
  std::istringstream words(outcome.Out);
  std::vector<double> numbers;
  for (double number; words >> number;) numbers.push_back(number);
  return numbers;
}

TEST(Meter, ReadsEachKind) {
  // The sample time of 0.25 ms divides the period of 50 ms, so whole periods are summed exactly;
  // the steps of 50 us put a sample up to 0.4 degrees late: 1 % covers it.
  const auto harmonic = MeterReading("--variable vLP1 --kind harmonic --harmonic 20 --with vC");
  ASSERT_EQ(harmonic.size(), 2U);
  EXPECT_NEAR(20.0 * std::log10(harmonic[0]), FilterGain(20.0), 0.1);
  EXPECT_NEAR(harmonic[1], FilterPhase(20.0), 1.0);
  EXPECT_NEAR(MeterReading("--variable vLP1 --kind harmonic --harmonic 20 --with vC --db").at(0),
              20.0 * std::log10(harmonic[0]), 1e-9);
  EXPECT_NEAR(MeterReading("--variable vC --kind harmonic --harmonic 20").at(0), 3.0, 0.03);
  // The gain of a signal on itself is 1, to rounding.
  EXPECT_EQ(MeterReading("--variable vC --kind correlation --with vC").size(), 1U);
  EXPECT_NEAR(MeterReading("--variable vC --kind correlation --with vC").at(0), 1.0, 1e-12);
  // The low-pass of 1 Hz leaves a ripple of about a fortieth of the squared sine.
  EXPECT_NEAR(MeterReading("--variable vC --kind rms --lpf 1").at(0), 3.0 / std::sqrt(2.0), 0.06);
  EXPECT_NEAR(MeterReading("--variable vC --kind average --lpf 1 --wave Offset=5").at(0), 5.0, 0.2);
  EXPECT_NEAR(MeterReading("--variable vC --kind average --lpf 1 --wave Offset=5 --ac").at(0), 0.0,
              0.2);
}

TEST(Bode, AveragesPrintsMarginsAndLaysAMeasurementOver) {
  const std::string bench = TemporaryPath("bench.csv");
  std::ofstream(bench) << "Frequency (Hz);Gain (dB);Phase (deg)\n10;-1;-45\n1000;-43;-45\n";
  const std::string points = TemporaryPath("points.csv");
  const std::string line =
      "bode '3-1 PI Controller' --input Error --output Feedback --order 11 --tsample 0.0002"
      " --end-delay 0.1 --average 2 --margins --overlay '" +
      bench + "'";
  const Outcome outcome = RunCliLine(line + " --out '" + points + "'");
  ASSERT_EQ(outcome.Code, 0) << outcome.Err;
  EXPECT_EQ(outcome.Err, "");
  const std::vector<std::string> lines = Lines(outcome.Out);
  EXPECT_EQ(lines.front(), "Response,Measure,Frequency,Value,Unit");
  const auto value = [&](const std::string& beginning) {
    for (const std::string& candidate : lines) {
      if (candidate.starts_with(beginning)) {
        return std::stod(candidate.substr(candidate.find(',', beginning.size() + 1) + 1));
      }
    }
    ADD_FAILURE() << beginning << "\n" << outcome.Out;
    return 0.0;
  };
  // Theory: 55.62 degrees and 14.89 dB.
  EXPECT_NEAR(value("Measured,Smallest phase margin"), 55.62, 1.0);
  EXPECT_NEAR(value("Measured,Smallest gain margin"), 14.89, 0.3);
  EXPECT_EQ(value("Overlay,Bandwidth"), -3.0);
  const std::vector<std::string> table = Lines(ReadWholeFile(points));
  EXPECT_EQ(table.front(), "Bin,Frequency,Gain,Phase,Excited,Coherence,Overlay Gain,Overlay Phase");
  EXPECT_EQ(table.size(), 1026U);
  EXPECT_TRUE(table[1].ends_with(",,"));
  EXPECT_NE(table[41].find(",1,0.9"), std::string::npos) << table[41];  // 97.7 Hz
  EXPECT_NE(table[41].find(",-21."), std::string::npos) << table[41];
  // What was written lies over the next measurement; without --out the margins replace the points.
  EXPECT_EQ(RunCliLine(line + " --overlay '" + points + "'").Code, 2);  // given twice
  EXPECT_EQ(RunCliLine("sweep '3-1 PI Controller' --input Error --output Feedback --from 40"
                       " --to 60 --average 2 --overlay '" +
                       points + "'")
                .Code,
            0);
}

TEST(Bode, RefusesWhatItCannotReadOrAverage) {
  const std::string command = "bode '3-1 PI Controller' --input Error --output Feedback ";
  const std::string bad = TemporaryPath("bad.csv");
  std::ofstream(bad) << "2,3,4\n1,3,4\n";
  const Outcome overlay = RunCliLine(command + "--overlay '" + bad + "'");
  EXPECT_EQ(overlay.Code, 3);
  EXPECT_NE(overlay.Err.find("line 2: the frequency is not above the one before it"),
            std::string::npos);
  for (const std::string& options : std::vector<std::string>{
           "--average 0", "--margins --spectrum", "--overlay '" + bad + "' --out '" + bad + "'"}) {
    EXPECT_EQ(RunCliLine(command + options).Code, 2) << options;
  }
  EXPECT_EQ(Lines(ReadWholeFile(bad)).size(), 2U);
  const Outcome leaking = RunCliLine(command + "--order 8 --end-delay 0 --margins");
  EXPECT_TRUE(leaking.Err.starts_with("Warning: End Zero Time = 0: ")) << leaking.Err;
}

TEST(Bode, SpectrumDropsTheInput) {
  const std::string line =
      "bode '9-1 Analog Filters' --output vLP1 --order 8 --start-delay 0.1 --end-delay 0.05 ";
  const Outcome vC = RunCliLine(line + "--input vC --spectrum");
  ASSERT_EQ(vC.Code, 0) << vC.Err;
  EXPECT_EQ(ParseTable(vC.Out).Rows(), 129U);
  EXPECT_EQ(vC.Out, RunCliLine(line + "--input vLP2 --spectrum").Out);
  EXPECT_NE(vC.Out, RunCliLine(line + "--input vC").Out);
}

#ifdef TORVANE_PICTURES
TEST(Bode, DrawsGainAndPhase) {
  for (const std::string command :
       {"bode --order 8 --end-delay 0.05", "sweep --from 10 --to 100"}) {
    const std::string picture = TemporaryPath("response.svg");
    const Outcome outcome = RunCliLine(
        command + " '9-1 Analog Filters' --input vC --output vLP1 --picture '" + picture + "'");
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_EQ(outcome.Err, "");
    const std::string drawn = ReadWholeFile(picture);
    for (const char* part : {"Gain (dB)", "Phase (deg)", "vLP1 / vC", "<polyline"}) {
      EXPECT_NE(drawn.find(part), std::string::npos) << command << ": " << part;
    }
  }
}
#endif

}  // namespace
}  // namespace torvane::test
