#include "instruments/analyser/response_csv.h"

#include <gtest/gtest.h>

#include <utility>

namespace torvane {
namespace {

TEST(ResponseText, ReadsWhatBenchesWrite) {
  const std::string own =
      "Bin,Frequency,Gain,Phase,Coherence,Excited\r\n0,0,9,9,1,1\r\n1,0.5,-3,-45,0.75,1\r\n"
      "2,1,-6.5,-90,1.5,0\r\n";
  const ResponseText read = ParseResponse(own);
  EXPECT_EQ(read.Fault, "");
  ASSERT_EQ(read.Curve.size(), 2U);
  EXPECT_EQ(read.Curve[0].Hz, 0.5);
  EXPECT_EQ(read.Curve[0].Coherence, 0.75);
  EXPECT_EQ(read.Curve[1].Gain, -6.5);
  EXPECT_EQ(read.Curve[1].Coherence, 1.0);
  EXPECT_FALSE(read.Curve[1].Excited);
  for (const char* text : {"\xEF\xBB\xBF# bench\nPhase (deg);Freq [Hz];Magnitude (dB)\n-45;2;-3",
                           "2\t-3\t-45\n", "\"Frequency\",\"Gain\",\"Phase\"\n\"2\",-3,-45"}) {
    const ResponseText other = ParseResponse(text);
    ASSERT_EQ(other.Curve.size(), 1U) << text << other.Fault;
    EXPECT_EQ(other.Curve[0].Hz, 2.0);
    EXPECT_EQ(other.Curve[0].Gain, -3.0);
    EXPECT_EQ(other.Curve[0].Phase, -45.0);
  }
  // Whatever is cut off or replaced, either a curve comes of it or a fault.
  for (std::size_t i = 0; i < own.size(); ++i) {
    for (const char replaced : {'\0', '-', '9', ','}) {
      std::string text = own;
      text[i] = replaced;
      for (const std::string& hostile : {text, text.substr(0, i)}) {
        const ResponseText outcome = ParseResponse(hostile);
        EXPECT_NE(outcome.Curve.empty(), outcome.Fault.empty()) << hostile;
      }
    }
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
           {"1,2,1e9\n", "line 1: no phase in degrees"}}) {
    EXPECT_EQ(ParseResponse(text).Fault, fault) << text;
  }
  EXPECT_EQ(ReadResponseFile("/nowhere.csv").Fault, "\"/nowhere.csv\": cannot be opened");
}

}  // namespace
}  // namespace torvane
