#include "instruments/analyser/response_csv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace torvane {
namespace {

TEST(ResponseText, ReadsWhatTorvaneWrites) {
  const std::string own =
      "Bin,Frequency,Gain,Phase,Coherence,Excited\r\n0,0,9,9,1,1\r\n1,0.5,-3,-45,0.75,1\r\n"
      "2,1,-6.5,-90,1.5,0\r\n";
  const ResponseText read = ParseResponse(own);
  EXPECT_EQ(read.Fault + read.Note, "");
  ASSERT_EQ(read.Responses.size(), 1U);
  const ResponseCurve& curve = read.Responses[0].Curve;
  ASSERT_EQ(curve.size(), 2U);
  EXPECT_EQ(curve[0].Hz, 0.5);
  EXPECT_EQ(curve[0].Coherence, 0.75);
  EXPECT_EQ(curve[1].Gain, -6.5);
  EXPECT_EQ(curve[1].Coherence, 1.0);
  EXPECT_FALSE(curve[1].Excited);
  const ResponseText several =
      ParseResponse("Frequency,Gain,Phase,Memory 2 Gain,Memory 2 Phase\n1,2,3,,\n2,2,3,-4,-5\n");
  ASSERT_EQ(several.Responses.size(), 2U) << several.Fault;
  EXPECT_EQ(several.Responses[1].Name, "Memory 2");
  EXPECT_EQ(several.Responses[1].Curve.size(), 1U);
  EXPECT_EQ(several.Responses[1].Curve[0].Phase, -5.0);
  // Whatever is cut off or replaced, either a curve comes of it or a fault.
  for (std::size_t i = 0; i < own.size(); ++i) {
    for (const char replaced : {'\0', '-', '9', ','}) {
      std::string text = own;
      text[i] = replaced;
      for (const std::string& hostile : {text, text.substr(0, i)}) {
        const ResponseText outcome = ParseResponse(hostile);
        EXPECT_NE(outcome.Responses.empty(), outcome.Fault.empty()) << hostile;
      }
    }
  }
}

// One point, 2 Hz at -20 dB and -45 degrees, as other tools write it.
TEST(ResponseText, ReadsTheLayoutsOfOtherTools) {
  for (const char* text :
       {"\xEF\xBB\xBF# bench\nPhase (deg);Freq [Hz];Magnitude (dB)\n-45;2;-20", "2\t-20\t-45\n",
        "\"Frequency\",\"Gain\",\"Phase\"\n\"2\",-20,-45", "2 -20   -45",
        "f/Hz;|H|/dB;arg/deg\n2;-20;-45", "Frequency (kHz),Mag (dB),Phase (deg)\n0.002,-20,-45",
        "Frequency (mHz),Mag (dB),Phase (deg)\n2000,-20,-45",
        "w (rad/s),mag (abs),phase (rad)\n12.566370614359172,0.1,-0.7853981633974483",
        "omega;Gain (abs);Phase (deg)\n12.566370614359172;0,1;-45,0",
        "Freq.\tV(out)\n2\t(-20dB,-45\xB0)",
        "Freq.\tV(out)\n2\t7.071067811865476e-2,-7.071067811865476e-2",
        "Hz,Re,Im\n2,0.07071067811865476,-0.07071067811865476",
        "frequency,response\n2,(0.07071067811865476-0.07071067811865476j)",
        "Frequency,Magnitude,Phase\nHz,dB,deg\n2,-20,-45",
        "Bode of the drive\nmeasured today\nFrequency (Hz),Gain (dB),Phase (deg)\n2,-20,-45",
        "Frequency (Hz),Gain (dB),Phase (deg)\n4,0,0\n2,-20,-45",
        "Frequency_Hz,Gain_dB,Phase_deg\n2,-20,-45",
        "% bench\nFrequency,Gain (dB),Phase\n2,-20,-45"}) {
    const ResponseText other = ParseResponse(text);
    ASSERT_EQ(other.Responses.size(), 1U) << text << "\n" << other.Fault;
    const ResponsePoint& point = other.Responses[0].Curve.front();
    EXPECT_NEAR(point.Hz, 2.0, 1e-12) << text;
    EXPECT_NEAR(point.Gain, -20.0, 1e-9) << text;
    EXPECT_NEAR(point.Phase, -45.0, 1e-9) << text;
  }
  EXPECT_NE(ParseResponse("2,-20,-45").Note, "");
  const auto hints = ParseResponseHints("1,b,a", "rad/s,abs,rad");
  ASSERT_TRUE(hints);
  EXPECT_NE(ParseResponse("x,a,b\n1,2,10\n", *ParseResponseHints("1,b,3", "")).Fault, "");
  const ResponseText inHz = ParseResponse("x,a,b\n2,-20,-45\n", *ParseResponseHints("1,2,3", ""));
  ASSERT_EQ(inHz.Responses.size(), 1U) << inHz.Fault;
  EXPECT_EQ(inHz.Responses[0].Curve[0].Hz, 2.0);
  const ResponseText hinted = ParseResponse("x,a,b\n1,2,10\n", *hints);
  ASSERT_EQ(hinted.Responses.size(), 1U) << hinted.Fault;
  EXPECT_NEAR(hinted.Responses[0].Curve[0].Hz, 0.15915494309189535, 1e-15);
  EXPECT_NEAR(hinted.Responses[0].Curve[0].Gain, 20.0, 1e-12);
  EXPECT_NEAR(hinted.Responses[0].Curve[0].Phase, 114.59155902616465, 1e-12);
  for (const auto& [columns, units] : {std::pair{"1,2", ""}, {"1,,3", ""}, {"", "Hz,deg,dB"}}) {
    EXPECT_FALSE(ParseResponseHints(columns, units)) << columns << units;
  }
}

TEST(ResponseText, SaysWhatIsWrongAndWhere) {
  for (const auto& [text, fault] : std::vector<std::pair<std::string, std::string>>{
           {"", "no points"},
           {"Frequency,Gain\n1,2\n", "line 1: the columns must be Frequency, Gain and Phase"},
           {"1,2,3\n2,x,3\n", "line 2: frequency, gain and phase must be numbers"},
           {"1,2\n", "line 1: frequency, gain and phase must be numbers"},
           {"1,inf,3\n", "line 1: frequency, gain and phase must be numbers"},
           {"1,2,3\n\n1,2,3\n", "line 3: the frequency is not above the one before it"},
           {"-1,2,3\n", "line 1: no frequency in Hz"},
           {"1,1e9,3\n", "line 1: no gain in dB"},
           {"1,2,1e9\n", "line 1: no phase in degrees"},
           {"w,mag,phase\n1,0.5,-1\n", "the gain may be in dB or a ratio"},

           {"f,mag (dB),phase\n1,0.5,-1\n", "the phase may be in degrees or radians"},
           {"f,Gain,Phase\n1,5,2,5,3,5\n",
            "line 2: more fields than columns; with decimal commas the fields need semicolons or "
            "tabs between them"}}) {
    EXPECT_EQ(ParseResponse(text).Fault, fault) << text;
  }
  EXPECT_NE(ReadResponseFile("/nowhere.csv").Fault, "");
}

}  // namespace
}  // namespace torvane
