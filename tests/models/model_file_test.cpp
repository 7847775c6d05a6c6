#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "instruments/scope/scope.h"
#include "models/loop.h"

// Model files that say what depends on more than one line, and how they are read.

namespace torvane {
namespace {

using test::Loop;
using test::Messages;

TEST(ModelFile, SettingsThatDependOnOthersDoNotDependOnTheirOrder) {
  Loop loop("3-1 PI Controller");
  ZelXfer& xfer = loop.Fft();
  loop.Load(
      "Xfer,MainXFer,tEndDelay,500\nXfer,MainXFer,FreqMax,2e6\nXfer,MainXFer,FreqMin,1e6\n"
      "Xfer,MainXFer,tSample,1\nXfer,MainXFer,Order,10\n");
  EXPECT_EQ(xfer.TEndDelay(), 500.0);
  EXPECT_EQ(xfer.FreqMin(), 1e6);
  EXPECT_EQ(xfer.FreqMax(), 2e6);
  loop.Load("Xfer,MainXFer,FreqMin,0.1\nXfer,MainXFer,FreqMax,0.2\n");
  EXPECT_EQ(xfer.FreqMin(), 0.1);
  EXPECT_EQ(xfer.FreqMax(), 0.2);
  // A record too short for the end delay from before cuts it.
  loop.Load("Xfer,MainXFer,Order,3\n");
  EXPECT_LT(xfer.TEndDelay(), 8.0);
  // A whole file's record is as long as it was, whatever the analyser had before.
  const std::string before = ModelFileText(loop.Model());
  xfer.SetOrder(13);
  xfer.SetTEndDelay(1000.0);
  const std::string longer = ModelFileText(loop.Model());
  for (const std::string& text : {before, longer, before}) {
    loop.Load(text);
    EXPECT_EQ(ModelFileText(loop.Model()), text);
  }
}

TEST(ModelFile, TracesShownAreThoseOfTheFileWhateverTheirOrder) {
  Loop loop("6-1 PID Controller");
  auto& scope = loop.The<ZelScope>(InstrumentKind::Scope);
  const auto& channels = scope.Channels();
  ASSERT_GE(channels.size(), 9U);
  for (std::size_t i = 0; i < 8; ++i) scope.SetDisplayed(*channels[i], true);
  // The last channel first, while the eight from before are still shown.
  std::string file;
  for (std::size_t i = channels.size(); i-- > 0;) {
    const std::string shown = i >= 8 ? ",1" : ",0";
    file += "Scope,MainScope,Channel," + channels[i]->Name() + shown + ",1,0,0,1,0\n";
  }
  loop.Load(file);
  for (std::size_t i = 0; i < channels.size(); ++i) {
    EXPECT_EQ(channels[i]->Displayed(), i >= 8) << i;
  }
}

TEST(ModelFile, APipeIsReadToItsEndHoweverSlowAndGivenUpWhenSilent) {
  test::Recorder messages;
  const std::string pipe = testing::TempDir() + "pipe" + std::to_string(::getpid());
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::string text;
  EXPECT_FALSE(ReadModelText(pipe, text, 20));
  EXPECT_EQ(messages.Take(),
            Messages{"Error: Nothing comes from " + pipe + ".  It is no model file."});
  // The reader opens a pipe that has no writer yet, and then is faster than it.
  std::thread writer([&] {
    std::ofstream out(pipe);
    for (const char* part : {"Constant,", "KP,1", "\n"}) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      out << part << std::flush;
    }
  });
  EXPECT_TRUE(ReadModelText(pipe, text));
  writer.join();
  EXPECT_EQ(text, "Constant,KP,1\n");
  std::filesystem::remove(pipe);
}

class Examples : public ::testing::TestWithParam<std::filesystem::path> {};

std::vector<std::filesystem::path> ExampleFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(TORVANE_SHARE) / "examples")) {
    if (entry.path().extension() == ".tvf") files.push_back(entry.path());
  }
  return files;
}

TEST_P(Examples, LoadWithoutAReportAndRun) {
  test::Recorder messages;
  CatalogueHost host;
  EXPECT_TRUE(LoadModelFile(GetParam().string(), host));
  ASSERT_TRUE(host.Model);
  // As the program itself would save it.
  std::string text;
  EXPECT_TRUE(ReadModelText(GetParam().string(), text));
  EXPECT_EQ(ModelFileText(*host.Model), text);
  host.Model->Solver().RunUntil(0.05);
  EXPECT_EQ(messages.Take(), Messages{});
}

INSTANTIATE_TEST_SUITE_P(Share, Examples, ::testing::ValuesIn(ExampleFiles()));

}  // namespace
}  // namespace torvane
