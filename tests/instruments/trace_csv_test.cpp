#include "instruments/scope/trace_csv.h"

#include <gtest/gtest.h>

#include "instruments/scope/scope_csv.h"
#include "scope_bench.h"

namespace torvane {
namespace {

// A signal that is shown in thousandths.
struct TraceCsv : testing::Test {
  test::ScopeBench Set{{.Multiplier = 1000.0, .Shown = true}};
  Variable Other{Set.Bench, "Other", "Volts"};
  ZelScope Scope{Set.Bench, "Second"};
};

TEST_F(TraceCsv, ReadsWhatBenchesAndTheScopeWrite) {
  for (const char* text : {"Time,Signal\n-1,2000\n1,4000\n",
                           "\xEF\xBB\xBF\"t (ms)\";\"SIGNAL [mV]\"\r\n-1000;2000,0\n1e3;4000",
                           "# bench\nsignal\tTime (us)\n2000\t-1000000\n\n4000\t1e6\n"}) {
    const TraceText read = ParseTraces(text, Scope);
    EXPECT_EQ(read.Fault + read.Note, "") << text;
    EXPECT_EQ(read.Screen.Time, (std::vector<double>{-1.0, 1.0})) << text;
    EXPECT_EQ(read.Screen.Left, -1.0);
    EXPECT_EQ(read.Screen.EventTime, 0.0);
    EXPECT_EQ(read.Screen.Values, (std::vector<std::vector<float>>{{2.0F, 4.0F}, {}}));
  }
  for (const char* text :
       {"Time,Other (mV)\n1,2000\n2,2000", "Time,Other [kvolt]\n1,.002\n2,.002"}) {
    EXPECT_EQ(ParseTraces(text, Scope).Screen.Values[1], (std::vector<float>{2.0F, 2.0F})) << text;
  }
  Set.Ramp(0, 9);
  EXPECT_EQ(ParseTraces(ScreenCsv(Set.Scope, Set.Screen()), Set.Scope).Screen.Values,
            Set.Screen().Values);
}

TEST_F(TraceCsv, SaysWhatIsWrongAndWhatIsPassedOver) {
  for (const auto& [text, told] : std::vector<std::pair<std::string, std::string>>{
           {"", "fewer than two points"},
           {"Time,Signal\n1,2\n", "fewer than two points"},
           {"1,2\n2,3\n", "line 1: the columns have no captions"},
           {"Time,x\n1,2\n", "line 1: no column has the name of a signal (Signal, Other)"},
           {"Time (h),Signal\n1,2\n", "line 1: time must be in s, ms or us"},
           {"Time,Signal\n1,2\n\n1,2\n", "line 4: the time is not after the one before it"},
           {"Time,Signal\n,2\n", "line 2: no time"},
           {"Time,Signal\n0,1,2,5\n",
            "line 2: more fields than columns; with decimal commas the fields need semicolons or "
            "tabs between them"},
           {"Time,Signal\n1,\n", "line 2: Signal is not a number that a trace can have"},
           {"Time,Signal\n1,1e60\n", "line 2: Signal is not a number that a trace can have"},
           {"Time,x,Signal,signal\n5,1,2,3\n6,1,2,3\n", "No signal of the scope: x, signal"},
           {"Time,Other (RPM)\n1,2\n2,2\n",
            "Units that are not known were read as the signals' own: Other (RPM) as Volts"},
           {"Time,Signal\n1,2\n2,2\n3,2\n4,2\n5,2\n99,2\n",
            "The times are not evenly spaced: Mean and RMS are those of the points"}}) {
    const TraceText read = ParseTraces(text, Scope);
    EXPECT_EQ(read.Fault + read.Note, told) << text;
    EXPECT_FALSE(read.Screen.EventTime);
  }
  EXPECT_NE(ReadTraceFile("/nowhere.csv", Scope).Fault, "");
}

}  // namespace
}  // namespace torvane
