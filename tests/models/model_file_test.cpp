#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "core/constant.h"
#include "core/files/record.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "models/catalogue.h"
#include "models/catalogue_host.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;

class ModelFile : public ::testing::Test {
 protected:
  ZelBenchTop& Bench() { return host_.Model->Bench(); }
  double Value(const std::string& name) { return Bench().FindConst(name)->Value(); }
  template <class Kind>
  Kind& First(InstrumentKind kind) {
    return dynamic_cast<Kind&>(*Bench().Instruments(kind).front());
  }

  std::string Path(const std::string& name) {
    return (std::filesystem::path(::testing::TempDir()) / name).string();
  }
  std::string Written(const std::string& name, const std::string& text) {
    std::ofstream(Path(name), std::ios::binary) << text;
    return Path(name);
  }

  test::Recorder messages_;
  CatalogueHost host_{LoadModel(FindModel("3-1 PI Controller"))};
};

TEST_F(ModelFile, TakesEitherLineEndAndALastLineWithout) {
  EXPECT_TRUE(LoadModelText("Constant,KP,0.7\r\nConst\rant,KI,90\n\nConstant,G,400\r", host_));
  EXPECT_EQ(Value("KP"), 0.7);
  EXPECT_EQ(Value("KI"), 90.0);
  EXPECT_EQ(Value("G"), 400.0);
  EXPECT_EQ(messages_.Take(), Messages{});
  for (const char c : ModelFileText(*host_.Model)) ASSERT_NE(c, '\0');
  const std::string saved = ModelFileText(*host_.Model);
  for (std::size_t at = saved.find('\n'); at != std::string::npos; at = saved.find('\n', at + 1)) {
    ASSERT_EQ(saved[at - 1], '\r');
  }
}

TEST_F(ModelFile, LoadingIsNoStepToUndoAndForgetsOnlyWhatItChanged) {
  auto& wave = *Bench().FindInstrument(InstrumentKind::WaveGenerator, "MainWaveGen");
  const auto set = [&](const std::string& value) {
    wave.LoadState(ParseRecord("WaveGen,MainWaveGen,FreqHz," + value, 1));
  };
  Bench().FindConst("KP")->Set(1.0);
  EXPECT_TRUE(LoadModelText("Constant,KP,1\n", host_));
  EXPECT_TRUE(Bench().History().CanUndo()) << "the file changed nothing";

  set("7");
  Bench().FindConst("KI")->Set(80.0);
  EXPECT_TRUE(LoadModelText("WaveGen,MainWaveGen,FreqHz,8\nConstant,KI,90\n", host_));
  Bench().History().Undo();
  EXPECT_EQ(Value("KP"), 0.6) << "only the first change is not void";
  EXPECT_FALSE(Bench().History().CanUndo());
  set("9");
  EXPECT_TRUE(LoadModelText("WaveGen,MainWaveGen,FreqHz,9\n", host_));
  EXPECT_TRUE(Bench().History().CanUndo()) << "the file changed nothing";
}

// A file that is not a model's own must not be taken for one and saved over.
TEST_F(ModelFile, TellsAModelsFileFromWhatMerelyLoads) {
  const std::string title = std::string("Application,") + ApplicationTitle + "\n";
  const std::string model = "Model,3-1 PI Controller\n";
  struct Case {
    std::string Text;
    bool AtEnd, IsModelFile, Recognised;
  } cases[] = {
      {title + model, true, true, true},
      {model + "Constant,KP,1\n", true, false, true},
      {title + "Constant,KP,1\n", true, false, true},
      {"Scope,MainScope,Channel,Feedback,1,1,1,0,1,1\n", true, false, true},
      {"", true, false, false},
      {"\n\n\xff\x01 anything\n", true, false, false},
      {"Constant,KVP,1\nScope,OtherScope,Trigger,Level,1\n", true, false, false},
      {title + model + "Application,Another\n", false, false, true},
      {"Model,17-1 Perpetual Motion\n", false, false, false},
  };
  for (const Case& tried : cases) {
    const LoadResult result = LoadModelText(tried.Text, host_);
    EXPECT_EQ(result.AtEnd, tried.AtEnd) << tried.Text;
    EXPECT_EQ(result.IsModelFile(), tried.IsModelFile) << tried.Text;
    EXPECT_EQ(result.Recognised, tried.Recognised) << tried.Text;
  }
}

// Whoever is asked sees the old state, whole.
TEST_F(ModelFile, WhatIsToBeAskedIsAskedBeforeAnythingChanges) {
  struct Watcher : public test::Recorder {
    explicit Watcher(CatalogueHost& watched) : host(watched) {}
    bool Ask(MessageKind, const std::string&) override {
      seen.push_back(host.Model->Name() + " " + host.Model->Bench().Constants()[0]->FileText());
      return true;
    }
    CatalogueHost& host;
    std::vector<std::string> seen;
  } watcher(host_);
  const std::string before = "3-1 PI Controller " + Bench().Constants()[0]->FileText();
  EXPECT_TRUE(LoadModelText("Constant," + Bench().Constants()[0]->Name() +
                                ",0.01\nModel,4-1 Digital PI Controller\n"
                                "Model,2-1 PI+ Controller\n",
                            host_));
  EXPECT_EQ(watcher.seen, (std::vector<std::string>{before, before}));
  EXPECT_EQ(host_.Model->Name(), "2-1 PI+ Controller");
}

TEST_F(ModelFile, AnotherModelIsBuiltAndReadInto) {
  EXPECT_TRUE(LoadModelText("Model,2-1 PI+ Controller\nConstant,KVP,1.25\n", host_));
  EXPECT_EQ(host_.Model->Name(), "2-1 PI+ Controller");
  EXPECT_EQ(Value("KVP"), 1.25);
  EXPECT_EQ(messages_.Take().size(), 1U);

  // Cancel keeps the model and stops.
  messages_.Answer = false;
  EXPECT_FALSE(LoadModelText("Model,3-1 PI Controller\nConstant,KVP,1\n", host_));
  EXPECT_EQ(host_.Model->Name(), "2-1 PI+ Controller");
  EXPECT_EQ(Value("KVP"), 1.25);
}

TEST_F(ModelFile, WindowsStayWhereTheyAreWhenTheUserWantsThat) {
  class FixedWindows : public CatalogueHost {
   public:
    using CatalogueHost::CatalogueHost;
    bool RestoresWindows() const override { return false; }
  } fixed{std::move(host_.Model)};
  const auto placement = [](const CatalogueHost& host) {
    return host.Model->Bench().Instruments(InstrumentKind::Scope).front()->Placement;
  };
  const std::string line = "Scope,MainScope,Display,wsMaximized,300,20,10,400\n";
  EXPECT_TRUE(LoadModelText(line, fixed));
  EXPECT_EQ(placement(fixed), WindowPlacement{});
  host_.Model = std::move(fixed.Model);
  EXPECT_TRUE(LoadModelText(line, host_));
  EXPECT_EQ(placement(host_), (WindowPlacement{WindowState::Maximised, 300, 20, 10, 400}));
}

TEST_F(ModelFile, SettingsThatDependOnOthersDoNotDependOnTheirOrder) {
  auto& xfer = First<ZelXfer>(InstrumentKind::FftAnalyser);
  EXPECT_TRUE(
      LoadModelText("Xfer,MainXFer,tEndDelay,500\nXfer,MainXFer,FreqMax,2e6\n"
                    "Xfer,MainXFer,FreqMin,1e6\nXfer,MainXFer,tSample,1\nXfer,MainXFer,Order,10\n",
                    host_));
  EXPECT_EQ(xfer.TEndDelay(), 500.0);
  EXPECT_EQ(xfer.FreqMin(), 1e6);
  EXPECT_EQ(xfer.FreqMax(), 2e6);
  EXPECT_TRUE(LoadModelText("Xfer,MainXFer,FreqMin,0.1\nXfer,MainXFer,FreqMax,0.2\n", host_));
  EXPECT_EQ(xfer.FreqMin(), 0.1);
  EXPECT_EQ(xfer.FreqMax(), 0.2);
  // A record too short for the end delay from before cuts it.
  EXPECT_TRUE(LoadModelText("Xfer,MainXFer,Order,3\n", host_));
  EXPECT_LT(xfer.TEndDelay(), 8.0);
  EXPECT_EQ(messages_.Take(), Messages{});
}

TEST_F(ModelFile, ARecordKeepsItsEndDelayWhateverTheAnalyserHadBefore) {
  auto& xfer = First<ZelXfer>(InstrumentKind::FftAnalyser);
  const std::string before = ModelFileText(*host_.Model);
  xfer.SetOrder(13);
  xfer.SetTEndDelay(1.5);
  xfer.SetOrder(10);
  const std::string shorter = ModelFileText(*host_.Model);
  for (const std::string& text : {before, shorter, before}) {
    EXPECT_TRUE(LoadModelText(text, host_));
    EXPECT_EQ(ModelFileText(*host_.Model), text);
  }
  EXPECT_EQ(messages_.Take(), Messages{});
}

TEST_F(ModelFile, MetersOfOneNameAreTwo) {
  const std::string meter = "Meter,M,Display,wsNormal,0,0,0,0\nMeter,M,TWindow,";
  for (int load = 0; load < 2; ++load) {
    EXPECT_TRUE(LoadModelText(meter + "1\n" + meter + "2\n", host_));
    const auto& meters = Bench().Instruments(InstrumentKind::Meter);
    ASSERT_EQ(meters.size(), 2U);
    EXPECT_EQ(dynamic_cast<ZelMeter&>(*meters[0]).TWindow(), 1.0);
    EXPECT_EQ(dynamic_cast<ZelMeter&>(*meters.back()).TWindow(), 2.0);
  }
  EXPECT_EQ(Bench().Instruments(InstrumentKind::Meter).back()->Name(), "M #2");
}

TEST_F(ModelFile, TracesShownAreThoseOfTheFileWhateverTheirOrder) {
  host_.Model = LoadModel(FindModel("6-1 PID Controller"));
  auto& scope = First<ZelScope>(InstrumentKind::Scope);
  const auto& channels = scope.Channels();
  ASSERT_GE(channels.size(), 9U);
  for (std::size_t i = 0; i < 8; ++i) scope.SetDisplayed(*channels[i], true);
  // The last channel first, while the eight from before are still shown.
  std::string file;
  for (std::size_t i = channels.size(); i-- > 0;) {
    file +=
        "Scope,MainScope,Channel," + channels[i]->Name() + (i >= 8 ? ",1" : ",0") + ",1,0,0,1,0\n";
  }
  EXPECT_TRUE(LoadModelText(file, host_));
  for (std::size_t i = 0; i < channels.size(); ++i)
    EXPECT_EQ(channels[i]->Displayed(), i >= 8) << i;
}

TEST_F(ModelFile, TellsViewsThatSettingsChanged) {
  class View : public InstrumentView {
   public:
    void Redraw() override {}
    void SettingsChanged() override { ++Told; }
    int Told = 0;
  } view;
  auto& generator = *Bench().Instruments(InstrumentKind::WaveGenerator).front();
  generator.SetView(&view);
  EXPECT_TRUE(LoadModelText("WaveGen,MainWaveGen,FreqHz,5\n", host_));
  EXPECT_GE(view.Told, 1);
  generator.SetView(nullptr);
}

TEST_F(ModelFile, IsRefusedWhenItIsTooLarge) {
  const std::string line = std::string(MaxModelLineLength - 1, 'x') + "\n";
  std::string text;
  EXPECT_TRUE(ReadModelText(Written("longest.tvf", line + line), text));
  EXPECT_EQ(messages_.Take(), Messages{});
  const std::string tooLong = Written("too-long.tvf", "\nxx" + line);
  EXPECT_FALSE(ReadModelText(tooLong, text));
  EXPECT_EQ(messages_.Take(), Messages{"Error: " + tooLong +
                                       " has a line longer than 64 KiB.  It is no model file."});

  std::ofstream(Path("huge.tvf")) << "Constant,KP,0.9\n";
  std::filesystem::resize_file(Path("huge.tvf"), MaxModelFileSize + 1);
  EXPECT_FALSE(LoadModelFile(Path("huge.tvf"), host_));
  EXPECT_EQ(messages_.Take().size(), 1U);
  EXPECT_EQ(Value("KP"), 0.6);
  // Without an end, and memory to match.
  EXPECT_FALSE(ReadModelText("/dev/zero", text));
  EXPECT_LT(text.size(), 2 * MaxModelLineLength);
}

TEST_F(ModelFile, APipeIsReadToItsEndHoweverSlowAndGivenUpWhenSilent) {
  const std::string pipe = Path("pipe" + std::to_string(::getpid()));
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::string text;
  EXPECT_FALSE(ReadModelText(pipe, text, 20));
  EXPECT_EQ(messages_.Take(),
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

TEST_F(ModelFile, WhatCannotBeOpenedIsSaid) {
  EXPECT_FALSE(LoadModelFile(Path("nothing-here.tvf"), host_));
  EXPECT_FALSE(LoadModelFile(::testing::TempDir(), host_));
  EXPECT_EQ(
      messages_.Take(),
      (Messages{"Error: Cannot open " + Path("nothing-here.tvf") + ": No such file or directory",
                "Error: Cannot open " + ::testing::TempDir() + ": Is a directory"}));
}

class Examples : public ::testing::TestWithParam<std::filesystem::path> {};

std::vector<std::filesystem::path> ExampleFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(TORVANE_SHARE) / "examples")) {
    files.push_back(entry.path());
  }
  return files;
}

TEST_P(Examples, LoadWithoutAReportAndRun) {
  test::Recorder messages;
  CatalogueHost host;
  EXPECT_TRUE(LoadModelFile(GetParam().string(), host));
  ASSERT_TRUE(host.Model);
  host.Model->Solver().RunUntil(0.05);
  EXPECT_EQ(messages.Take(), Messages{});
  // As the program itself would save it.
  std::ifstream file(GetParam(), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  CatalogueHost again;
  LoadModelText(text, again);
  EXPECT_EQ(ModelFileText(*again.Model), text);
}

INSTANTIATE_TEST_SUITE_P(Share, Examples, ::testing::ValuesIn(ExampleFiles()));

}  // namespace
}  // namespace torvane
