#include "models/experiment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "core/files/model_file.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/scope/scope.h"
#include "models/catalogue_host.h"
#include "models/experiment_reading.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using Path = std::filesystem::path;

std::string TextOf(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<Path> Records() {
  std::vector<Path> records;
  for (const auto& entry : std::filesystem::directory_iterator(Path(TORVANE_SHARE) / "examples")) {
    if (entry.path().extension() == ".experiment") records.push_back(entry.path());
  }
  return records;
}

/// Runs it as the experiment's panel does: measures where there is something to measure, else for
/// some screens and some periods of the slowest generator, at which a change has long passed.
void RunFor(const Experiment& experiment, ZelModel& model, ExperimentReader& reader) {
  ZelXfer* analyser = nullptr;
  if (experiment.Shows(InstrumentKind::FftAnalyser)) {
    const auto& analysers = model.Bench().Instruments(InstrumentKind::FftAnalyser);
    analyser = &dynamic_cast<ZelXfer&>(*analysers.front());
    analyser->Run();
  }
  const double until = model.Time() + 4.0;
  model.Bench().StartScopes();
  while ((analyser && analyser->Measuring()) || model.Time() < until) model.RunChunk();
  reader.Look();
}

class Experiments : public testing::TestWithParam<Path> {};

TEST_P(Experiments, BeginInTheirFirstStepAndReadWhatTheySay) {
  test::Recorder messages;
  std::string fault;
  const auto experiment = ReadExperiment(TextOf(GetParam()), fault);
  ASSERT_TRUE(experiment) << fault;
  CatalogueHost host;
  ASSERT_TRUE(LoadModelFile(Path(GetParam()).replace_extension(".tvf").string(), host));
  ASSERT_EQ(host.Model->Name(), experiment->Model);
  ZelModel& model = *host.Model;
  model.DropClassMemory();
  const std::string before = SettingsText(model);
  for (const ExperimentSetting& setting : experiment->SettingsAt(0)) {
    EXPECT_TRUE(IsSet(setting, model) && Apply(setting, model)) << setting.Text();
    EXPECT_TRUE(SettingsText(model) == before) << setting.Text();
  }
  ExperimentReader reader(*experiment, model);
  for (std::size_t k = 0; k < experiment->Steps.size(); ++k) {
    const ExperimentStep& step = experiment->Steps[k];
    for (const ExperimentSetting& setting : step.Settings) {
      EXPECT_TRUE(Apply(setting, model) && IsSet(setting, model)) << setting.Text();
    }
    reader.Look();
    for (std::size_t i = 0; i < step.Answers.size(); ++i) {
      // Another pair of signals is read from the same measurement.
      EXPECT_FALSE(reader.Of(k, i).Present && !(k > 0 && step.Answers[i].Signal.empty()));
    }
    RunFor(*experiment, model, reader);
    for (std::size_t i = 0; i < step.Answers.size(); ++i) {
      const ExperimentReading& read = reader.Of(k, i);
      EXPECT_TRUE(read.Present && step.Answers[i].IsMetBy(*read.Value))
          << step.Answers[i].Reading << ' ' << read.Value.value_or(NAN) << ' ' << read.Gap << " at "
          << step.Settings.front().Text();
    }
  }
  for (std::size_t k = 0; k < experiment->Steps.size(); ++k) {
    for (std::size_t i = 0; i < experiment->Steps[k].Answers.size(); ++i) {
      EXPECT_TRUE(experiment->Steps[k].Answers[i].IsMetBy(*reader.Of(k, i).Value)) << "lost " << k;
    }
  }
  for (const ExperimentSetting& setting : experiment->Tries) {
    EXPECT_TRUE(Apply(setting, model) && IsSet(setting, model)) << setting.Text();
  }
  EXPECT_TRUE(OnlyProposed(*experiment, before, model));
  std::set<std::string> shown;
  for (const Instrument* scope : model.Bench().Instruments(InstrumentKind::Scope)) {
    for (const auto& channel : dynamic_cast<const ZelScope*>(scope)->Channels()) {
      if (channel->Displayed()) shown.insert(channel->Name());
    }
  }
  if (!experiment->Watched.empty()) {
    EXPECT_EQ(shown, std::set(experiment->Watched.begin(), experiment->Watched.end()));
  }
  EXPECT_EQ(messages.Take(), test::Messages{});
}

INSTANTIATE_TEST_SUITE_P(Share, Experiments, testing::ValuesIn(Records()));

const std::string Whole =
    "Title: T\nModel: M\nNumber: 2\nQuestion: Why?\nCost: C\nShow: Scope, Meters\nWatch: a, b\n"
    "With: Waveform = Sine\nStep: K = 1, W: Frequency = 2\nAnswer: Rise of a = 3 +- 0.5 sec\n"
    "Answer: Gain at 45 Hz = -3 +- 0.1 dB\nStep: K = 2\nText:\nOne.\n";

TEST(ExperimentRecord, HoldsWhatItsLinesSay) {
  std::string fault;
  const auto read = ReadExperiment(Whole, fault);
  ASSERT_TRUE(read) << fault;
  EXPECT_EQ(read->Title + read->Model + read->Question + read->Cost + read->Text, "TMWhy?COne.\n");
  EXPECT_EQ(read->Number, 2);
  EXPECT_TRUE(read->Shows(InstrumentKind::Meter) && !read->Shows(InstrumentKind::SweptSine));
  EXPECT_EQ(read->Watched, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(read->SetUp.front().Text(), "Waveform = Sine");
  ASSERT_EQ(read->Steps.size(), 2U);
  EXPECT_EQ(read->Steps[0].Settings[1].Text(), "W: Frequency = 2");
  const auto& [rise, gain] = std::pair(read->Steps[0].Answers[0], read->Steps[0].Answers[1]);
  EXPECT_EQ(rise.Reading + rise.Signal + rise.Unit, "Riseasec");
  EXPECT_EQ(gain.AtHz, 45.0);
  EXPECT_TRUE(rise.IsMetBy(3.5) && rise.IsMetBy(2.5) && !rise.IsMetBy(3.51));
}

TEST(ExperimentRecord, TellsTheLineThatMeansNothing) {
  const std::pair<std::string, std::string> cases[] = {{"Number: 2", "Number: two"},
                                                       {"Show: Scope", "Show: Scopes"},
                                                       {"K = 1", "K"},
                                                       {"Rise of a", "Rise"},
                                                       {"Rise of a", "Climb of a"},
                                                       {"Gain at 45 Hz", "Gain"},
                                                       {"Gain at 45 Hz", "Gain of a"},
                                                       {"+- 0.5", ""},
                                                       {"Title: T", "Heading: T"},
                                                       {"= -3 ", "= many "}};
  for (const auto& [good, bad] : cases) {
    std::string text = Whole;
    text.replace(text.find(good), good.size(), bad);
    std::string fault;
    EXPECT_FALSE(ReadExperiment(text, fault)) << bad;
    EXPECT_NE(text.find(fault), std::string::npos) << fault;
  }
  for (std::size_t length = 0; length + 5 < Whole.size(); ++length) {
    std::string fault;
    EXPECT_FALSE(ReadExperiment(Whole.substr(0, length), fault)) << length;
  }
}

}  // namespace
}  // namespace torvane
