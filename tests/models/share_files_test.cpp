#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "core/text.h"
#include "models/loop.h"

// The drawings and descriptions in share/models, held against the models that they describe.

namespace torvane {
namespace {

using Names = std::vector<std::string>;
const std::filesystem::path Folder = std::filesystem::path(TORVANE_SHARE) / "models";

/// The drawing from which the build makes the picture.
std::string DrawingOf(const ZelModel& model) {
  const std::string& picture = model.PictureFile();
  if (picture.empty()) return "";
  return std::filesystem::path(picture).replace_extension(".svg").string();
}

/// A model that names no description has one beside its drawing, for its experiments.
std::string DescriptionOf(const ZelModel& model) {
  if (!model.TextFile().empty()) return model.TextFile();
  return std::filesystem::path(DrawingOf(model)).replace_extension(".txt").string();
}

std::string ReadFile(const std::string& name) {
  std::ifstream file(Folder / name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The parts between what the pattern matches.
Names Split(const std::string& text, const std::string& separator) {
  const std::regex pattern(separator);
  return {std::sregex_token_iterator(text.begin(), text.end(), pattern, -1), {}};
}

/// What the pattern's group is wherever it matches.
Names Found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  return {std::sregex_token_iterator(text.begin(), text.end(), expression, 1), {}};
}

/// What the experiments' lines that begin with the keyword say.
Names Instructions(const std::string& text, const std::string& keyword) {
  return Found(text,
               "\n   " + keyword + std::string(11 - keyword.size(), ' ') + "(?:then )?([^\n]*)");
}

class ShareFiles : public ::testing::TestWithParam<std::string> {
 protected:
  ZelBenchTop& Bench() { return loop_.Bench(); }

  void ExpectSignal(const std::string& name) {
    const Variable* variable = Bench().FindVar(name);
    EXPECT_TRUE(variable && !variable->Internal()) << name;
  }

  /// "KVP = 2", a value that the constant takes as it stands.
  void ExpectSetting(const std::string& text) {
    const Names sides = Split(text, " = ");
    ASSERT_EQ(sides.size(), 2U) << text;
    Constant* constant = Bench().FindConst(sides[0]);
    ASSERT_TRUE(constant) << text;
    EXPECT_TRUE(constant->SetFromText(sides[1])) << text;
    EXPECT_TRUE(constant->IsList() || constant->Value() == ParseNumber(sides[1])) << text;
  }

  /// "Waveform = Square, FreqHz = 5", after the generator's name and ": " where there are several.
  void ExpectGenerator(const std::string& text) {
    const Names address = Split(text, ": ");
    const auto& generators = Bench().Instruments(InstrumentKind::WaveGenerator);
    ASSERT_EQ(address.size(), generators.size() > 1 ? 2U : 1U) << text;
    const std::string& name = address.size() == 2 ? address[0] : generators[0]->Name();
    EXPECT_TRUE(Bench().FindInstrument(InstrumentKind::WaveGenerator, name)) << text;
    for (const std::string& setting : Split(address.back(), ", ")) {
      Names sides = Split(setting, " = ");
      ASSERT_EQ(sides.size(), 2U) << text;
      const auto& waveforms = ZelWave::WaveformNames();
      const auto waveform = std::ranges::find(waveforms, sides[1]);
      if (waveform != waveforms.end()) sides[1] = std::to_string(waveform - waveforms.begin());
      loop_.Load("WaveGen," + name + "," + sides[0] + "," + sides[1] + "\n");
    }
  }

  test::Loop loop_{GetParam()};
  const std::string text_ = ReadFile(DescriptionOf(loop_.Model()));
};

TEST_P(ShareFiles, DrawingNamesEveryConstantAndNothingElse) {
  if (loop_.Model().PictureFile().empty()) return;
  const std::string svg = ReadFile(DrawingOf(loop_.Model()));
  const Names marked = Found(svg, "class=\"constant\"[^>]*>([^<]*)<");
  std::set<std::string> constants;
  for (const Constant* constant : Bench().Constants()) constants.insert(constant->Name());
  EXPECT_EQ(std::set<std::string>(marked.begin(), marked.end()), constants);
  const Names signals = Found(svg, "class=\"signal\"[^>]*>([^<]*)<");
  EXPECT_FALSE(signals.empty());
  for (const std::string& signal : signals) ExpectSignal(signal);
}

TEST_P(ShareFiles, DescriptionListsEveryConstantWithItsDefault) {
  EXPECT_TRUE(text_.starts_with(GetParam() + "\n"));
  const std::string table = text_.substr(text_.find("\nCONSTANTS"));
  for (const Constant* constant : Bench().Constants()) {
    const std::size_t at = table.find("\n" + constant->Name() + "  ");
    ASSERT_NE(at, std::string::npos) << constant->Name();
    std::istringstream rest(table.substr(at + 1 + constant->Name().size()));
    std::string value;
    std::string unit;
    rest >> value >> unit;
    EXPECT_TRUE(constant->IsList() ? value == constant->FileText()
                                   : ParseNumber(value) == constant->Default())
        << constant->Name() << " " << value;
    EXPECT_TRUE(constant->Unit().empty() || unit == constant->Unit()) << constant->Name();
  }
}

TEST_P(ShareFiles, ExperimentsCanBeDoneAsWritten) {
  const std::size_t experiments = Found(text_, "\n([1-9])\\. ").size();
  EXPECT_TRUE(experiments == 3 || experiments == 4) << experiments;
  for (const std::string& text : Instructions(text_, "Set")) {
    for (const std::string& setting : Split(text, ", (?:then )?")) ExpectSetting(setting);
  }
  for (const std::string& text : Instructions(text_, "Generator")) ExpectGenerator(text);
  for (const std::string& text : Instructions(text_, "Watch")) {
    for (const std::string& signal : Split(text, ", ")) ExpectSignal(signal);
  }
  for (const std::string& text : Instructions(text_, "Analyser")) {
    const Names signals = Found(text, "(?:In|Out)put = ([^,]+)");
    ASSERT_EQ(signals.size(), 2U) << text;
    for (const std::string& signal : signals) ExpectSignal(signal);
  }
}

// Shown in a fixed-width font, in a window of 80 columns.
TEST_P(ShareFiles, DescriptionFitsItsWindow) {
  EXPECT_TRUE(std::regex_match(text_, std::regex("(?:[ -~]{0,78}\n)*")));
}

INSTANTIATE_TEST_SUITE_P(EveryModel, ShareFiles, ::testing::ValuesIn(ModelNames()));

TEST(ShareFolder, HoldsTheFilesThatModelsNameAndNoOthers) {
  std::set<std::string> named{""};
  for (const std::string& name : ModelNames()) {
    const auto model = LoadModel(FindModel(name));
    EXPECT_FALSE(model->PictureFile().empty() && model->TextFile().empty()) << name;
    named.insert({DrawingOf(*model), DescriptionOf(*model)});
  }
  std::set<std::string> present{""};
  for (const auto& entry : std::filesystem::directory_iterator(Folder)) {
    present.insert(entry.path().filename().string());
  }
  EXPECT_EQ(present, named);
}

}  // namespace
}  // namespace torvane
