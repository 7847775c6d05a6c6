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
const std::filesystem::path ModelsFolder = std::filesystem::path(TORVANE_SHARE) / "models";

/// The drawing that the program shows, and from which the build makes the picture.
std::string DrawingOf(const ZelModel& model) {
  const std::string& picture = model.PictureFile();
  const std::filesystem::path of = picture.empty() ? model.TextFile() : picture;
  return std::filesystem::path(of).replace_extension(".svg").string();
}

std::string ReadFile(const std::string& name) {
  std::ifstream file(ModelsFolder / name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

/// What the pattern's group is wherever it matches.
Names Found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  return {std::sregex_token_iterator(text.begin(), text.end(), expression, 1), {}};
}

class ShareFiles : public ::testing::TestWithParam<std::string> {
 protected:
  ZelBenchTop& Bench() { return loop_.Bench(); }

  void ExpectSignal(const std::string& name) {
    const Variable* variable = Bench().FindVar(name);
    EXPECT_TRUE(variable && !variable->Internal()) << name;
  }

  test::Loop loop_{GetParam()};
  const std::string text_ = ReadFile(loop_.Model().TextFile());
};

TEST_P(ShareFiles, DrawingNamesWhatTheBenchHasAndNothingElse) {
  // Signals that a model registers and never writes.
  const std::set<std::string> withoutPlace = {"2-1 PI+ Controller vE", "2-1 PI+ Controller pF",
                                              "16-2 PID Position Loop vE"};
  const std::string svg = ReadFile(DrawingOf(loop_.Model()));
  const auto expectPlaces = [&](const std::string& kind, const std::set<std::string>& names) {
    const Names marked = Found(svg, "class=\"" + kind + "\"[^>]*>([^<]*)<");
    EXPECT_EQ(std::set<std::string>(marked.begin(), marked.end()), names);
    const Names places = Found(svg, "id=\"" + kind + " ([^\"#]*)\"");
    EXPECT_EQ(std::set<std::string>(places.begin(), places.end()), names);
    EXPECT_EQ(places.size(), names.size());
  };
  std::set<std::string> constants;
  for (const Constant* constant : Bench().Constants()) constants.insert(constant->Name());
  expectPlaces("constant", constants);
  std::set<std::string> signals;
  for (const Variable* variable : Bench().Variables()) {
    if (variable->Internal() || withoutPlace.count(GetParam() + " " + variable->Name())) continue;
    signals.insert(variable->Name());
  }
  expectPlaces("signal", signals);
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
    named.insert({DrawingOf(*model), model->TextFile()});
  }
  std::set<std::string> present{""};
  for (const auto& entry : std::filesystem::directory_iterator(ModelsFolder)) {
    present.insert(entry.path().filename().string());
  }
  EXPECT_EQ(present, named);
}

}  // namespace
}  // namespace torvane
