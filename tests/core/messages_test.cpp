#include "core/messages.h"

#include <gtest/gtest.h>

#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

TEST(MessagesTest, EveryReportReachesTheSinkUnderItsCaption) {
  Recorder recorder;
  Note("a");
  Warning("b");
  Error("c");
  ConversionError("d");
  EXPECT_FALSE(recorder.Ended);
  FatalError("e");
  EXPECT_TRUE(recorder.Ended);
  EXPECT_EQ(recorder.Take(),
            (Messages{"Note: a", "Warning: b", "Error: c", "Message Box: d", "Fatal Error: e"}));

  EXPECT_TRUE(WarningQuestion("f"));
  recorder.Answer = false;
  EXPECT_FALSE(ErrorQuestion("g"));
  EXPECT_EQ(recorder.Take(), (Messages{"Warning: f", "Error: g"}));
}

TEST(MessagesTest, SinksNestAndWithoutOneQuestionsAreCancelled) {
  EXPECT_FALSE(WarningQuestion("nobody listens"));
  FatalError("nobody listens");
  Recorder outer;
  {
    Recorder inner;
    Error("inner");
    EXPECT_EQ(inner.Take(), Messages{"Error: inner"});
  }
  Error("outer");
  EXPECT_EQ(outer.Take(), Messages{"Error: outer"});
}

}  // namespace
}  // namespace torvane
