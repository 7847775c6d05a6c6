#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/constant.h"
#include "core/text.h"
#include "library/wave.h"
#include "models/catalogue.h"
#include "support/recorder.h"

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

std::string ReadFile(const std::string& name) {
  std::ifstream file(Folder / name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

Names ReadLines(const std::string& name) {
  std::istringstream text(ReadFile(name));
  Names lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

Names Split(const std::string& text, const std::string& separator) {
  Names parts;
  std::size_t from = 0;
  for (std::size_t at; (at = text.find(separator, from)) != std::string::npos;) {
    parts.push_back(text.substr(from, at - from));
    from = at + separator.size();
  }
  parts.push_back(text.substr(from));
  return parts;
}

/// The texts that a drawing marks as names of the given class.
std::set<std::string> MarkedNames(const std::string& svg, const std::string& mark) {
  const std::regex pattern("class=\"" + mark + "\"[^>]*>([^<]*)<");
  std::set<std::string> names;
  for (std::sregex_iterator i(svg.begin(), svg.end(), pattern), end; i != end; ++i) {
    names.insert((*i)[1]);
  }
  return names;
}

/// What the experiments' lines that begin with the keyword say.
Names Instructions(const Names& lines, const std::string& keyword) {
  const std::string start = "   " + keyword + std::string(11 - keyword.size(), ' ');
  Names found;
  for (const std::string& line : lines) {
    if (line.starts_with(start)) found.push_back(line.substr(start.size()));
  }
  return found;
}

class ShareFiles : public ::testing::TestWithParam<int> {
 protected:
  ZelBenchTop& Bench() { return model_->Bench(); }

  void ExpectSignal(const std::string& name) {
    const Variable* variable = Bench().FindVar(name);
    ASSERT_TRUE(variable) << name;
    EXPECT_FALSE(variable->Internal()) << name;
  }

  /// "KVP = 2", a value that the constant takes as it stands.
  void ExpectSetting(const std::string& text) {
    const Names sides = Split(text, " = ");
    ASSERT_EQ(sides.size(), 2U) << text;
    Constant* constant = Bench().FindConst(sides[0]);
    ASSERT_TRUE(constant) << text;
    EXPECT_TRUE(constant->SetFromText(sides[1])) << text;
    if (!constant->IsList()) {
      EXPECT_EQ(constant->Value(), ParseNumber(sides[1])) << text << " is out of limits";
    }
  }

  /// "Square" for "Waveform", a number for the others.
  void ExpectWave(const std::string& key, const std::string& value) {
    if (key == "Waveform") {
      const auto& names = ZelWave::WaveformNames();
      EXPECT_NE(std::find(names.begin(), names.end(), value), names.end()) << value;
    } else {
      const std::set<std::string> keys{"Amplitude", "FreqHz", "Offset", "PhaseDeg", "DutyCycle"};
      EXPECT_TRUE(keys.contains(key) && ParseNumber(value)) << key << " = " << value;
    }
  }

  /// "Waveform = Square, FreqHz = 5", after the generator's name and ": " where there are several.
  void ExpectGenerator(const std::string& text) {
    const Names address = Split(text, ": ");
    const auto& generators = Bench().Instruments(InstrumentKind::WaveGenerator);
    ASSERT_EQ(address.size(), generators.size() > 1 ? 2U : 1U) << text;
    if (address.size() == 2) {
      EXPECT_TRUE(Bench().FindInstrument(InstrumentKind::WaveGenerator, address[0])) << text;
    }
    for (const std::string& setting : Split(address.back(), ", ")) {
      const Names sides = Split(setting, " = ");
      ASSERT_EQ(sides.size(), 2U) << text;
      ExpectWave(sides[0], sides[1]);
    }
  }

  test::Recorder messages_;
  std::unique_ptr<ZelModel> model_ = LoadModel(GetParam());
  Names text_ = model_->TextFile().empty() ? Names{} : ReadLines(model_->TextFile());
};

TEST_P(ShareFiles, DrawingNamesEveryConstantAndNothingElse) {
  if (model_->PictureFile().empty()) return;
  const std::string svg = ReadFile(DrawingOf(*model_));
  std::set<std::string> constants;
  for (const Constant* constant : Bench().Constants()) constants.insert(constant->Name());
  EXPECT_EQ(MarkedNames(svg, "constant"), constants);
  const auto signals = MarkedNames(svg, "signal");
  EXPECT_FALSE(signals.empty());
  for (const std::string& signal : signals) ExpectSignal(signal);
}

TEST_P(ShareFiles, DescriptionListsEveryConstantWithItsDefault) {
  if (text_.empty()) return;
  EXPECT_EQ(text_.front(), model_->Name());
  const auto table = std::find_if(text_.begin(), text_.end(), [](const std::string& line) {
    return line.starts_with("CONSTANTS");
  });
  for (const Constant* constant : Bench().Constants()) {
    const std::string start = constant->Name() + "  ";
    const auto line = std::find_if(table, text_.end(),
                                   [&](const std::string& l) { return l.starts_with(start); });
    ASSERT_NE(line, text_.end()) << constant->Name();
    std::istringstream rest(line->substr(start.size()));
    std::string value;
    std::string unit;
    rest >> value >> unit;
    if (constant->IsList()) {
      EXPECT_EQ(value, constant->FileText()) << *line;
    } else {
      EXPECT_EQ(ParseNumber(value), constant->Default()) << *line;
    }
    EXPECT_TRUE(constant->Unit().empty() || unit == constant->Unit()) << *line;
  }
}

TEST_P(ShareFiles, ExperimentsCanBeDoneAsWritten) {
  if (text_.empty()) return;
  const auto experiments = std::count_if(text_.begin(), text_.end(), [](const std::string& line) {
    return std::regex_match(line, std::regex("[1-9]\\. .*"));
  });
  EXPECT_TRUE(experiments == 3 || experiments == 4) << experiments;
  for (const std::string& text : Instructions(text_, "Set")) {
    for (const std::string& setting :
         Split(std::regex_replace(text, std::regex("then "), ""), ", "))
      ExpectSetting(setting);
  }
  for (const std::string& text : Instructions(text_, "Generator")) ExpectGenerator(text);
  for (const std::string& text : Instructions(text_, "Watch")) {
    for (const std::string& signal : Split(text, ", ")) ExpectSignal(signal);
  }
  for (const std::string& text : Instructions(text_, "Analyser")) {
    std::smatch names;
    ASSERT_TRUE(std::regex_search(text, names, std::regex("Input = (.+), Output = ([^,]+)")))
        << text;
    ExpectSignal(names[1]);
    ExpectSignal(names[2]);
  }
  EXPECT_EQ(messages_.Take(), test::Messages{});
}

// Shown in a fixed-width font, in a window of 80 columns.
TEST_P(ShareFiles, DescriptionFitsItsWindow) {
  for (const std::string& line : text_) {
    EXPECT_LE(line.size(), 78U) << line;
    EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        << line;
  }
}

INSTANTIATE_TEST_SUITE_P(EveryModel, ShareFiles,
                         ::testing::Range(0, static_cast<int>(ModelNames().size())));

TEST(ShareFolder, HoldsTheFilesThatModelsNameAndNoOthers) {
  std::set<std::string> named;
  for (int i = 0; i < static_cast<int>(ModelNames().size()); ++i) {
    const auto model = LoadModel(i);
    EXPECT_FALSE(model->PictureFile().empty() && model->TextFile().empty()) << model->Name();
    named.insert({DrawingOf(*model), model->TextFile()});
  }
  named.erase("");
  std::set<std::string> present;
  for (const auto& entry : std::filesystem::directory_iterator(Folder)) {
    present.insert(entry.path().filename().string());
  }
  EXPECT_EQ(present, named);
}

}  // namespace
}  // namespace torvane
