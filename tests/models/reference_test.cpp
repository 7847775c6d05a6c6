#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <map>
#include <sstream>

#include "core/text.h"
#include "models/loop.h"

// Trajectories and responses from an independent implementation of the same loops, to the bit.

namespace torvane {
namespace {

using test::Loop;
using Fields = std::vector<std::string>;
using Row = std::vector<double>;

const std::string Folder = TORVANE_TEST_DATA "/reference/";

/// A file and the arguments with which torvane-cli gives it, in a line of commands.txt.
struct Reference {
  explicit Reference(const std::string& line) {
    std::istringstream words(line);
    const auto word = [&] {
      std::string text;
      words >> std::quoted(text, '\'');
      return text;
    };
    File = word();
    Command = word();
    Model = word();
    for (std::string name = word(); !name.empty(); name = word()) Take(name, word());
  }

  /// What is set becomes lines of a model file.
  void Take(const std::string& option, std::string value) {
    static const std::map<std::string, std::string> records{
        {"--set", "Constant"},
        {"--wave", "WaveGen"},
        {"--order", "Xfer,MainXFer,Order"},
        {"--tsample", "Xfer,MainXFer,tSample"},
        {"--input", "Xfer,MainXFer,InputChannel"},
        {"--output", "Xfer,MainXFer,OutputChannel"},
        {"--amplitude", "Xfer,MainXFer,ExAmplitude"},
        {"--offset", "Xfer,MainXFer,ExOffset"},
        {"--start-delay", "Xfer,MainXFer,tStartDelay"},
        {"--end-delay", "Xfer,MainXFer,tEndDelay"}};
    if (!records.contains(option)) {
      Numbers[option] = ParseNumber(value).value_or(0.0);
      return;
    }
    // 15-1, 16-1 and 16-2 have sources of the command and of the disturbance.
    if (option == "--wave" && value.find(':') == std::string::npos) {
      value.insert(0, Model.starts_with("1") ? "Command Source:" : "MainWaveGen:");
    }
    std::ranges::replace_if(
        value, [](char c) { return c == '=' || c == ':'; }, ',');
    Settings += records.at(option) + "," + value + "\n";
  }

  std::string File, Command, Model, Settings;
  std::map<std::string, double> Numbers;
};

void PrintTo(const Reference& reference, std::ostream* stream) {
  *stream << reference.File;
}

std::vector<Reference> ReadReferences() {
  std::vector<Reference> references;
  std::ifstream file(Folder + "commands.txt");
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() != '#') references.emplace_back(line);
  }
  return references;
}

Fields Split(const std::string& text) {
  Fields fields;
  std::istringstream stream(text);
  for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
  return fields;
}

/// A row at time 0 and one whenever a step comes to within a millionth of it of the next instant.
std::vector<Row> Trajectory(Loop& loop, const Reference& reference, const Fields& signals) {
  std::vector<Row> rows;
  const auto write = [&] {
    rows.push_back({loop.Model().Time()});
    for (std::size_t i = 1; i < signals.size(); ++i) {
      rows.back().push_back(loop.Bench().FindVar(signals[i])->DisplayValue());
    }
  };
  const double near = 1e-6 * loop.Model().Solver().Step();
  const double end = reference.Numbers.at("--until") - near;
  const double every = reference.Numbers.at("--every");
  write();
  while (loop.Model().Time() < end) {
    const double due = (std::floor((loop.Model().Time() + near) / every) + 1.0) * every - near;
    loop.Run(std::min(due, end));
    if (loop.Model().Time() >= due) write();
  }
  return rows;
}

std::vector<Row> Response(Loop& loop) {
  loop.Fft().SetAtOnce(true);
  const ZelXfer& fft = loop.Measure();
  std::vector<Row> rows;
  for (int bin = 0; bin <= fft.Length() / 2; ++bin) {
    rows.push_back({static_cast<double>(bin), fft.BinFrequency(bin), fft.ResponseGain(0, bin),
                    fft.ResponsePhase(0, bin)});
  }
  return rows;
}

class ReferenceTest : public testing::TestWithParam<Reference> {};

TEST_P(ReferenceTest, IsWhatTheModelDoes) {
  const Reference& reference = GetParam();
  Loop loop(reference.Model);
  loop.Load(reference.Settings);

  std::ifstream file(Folder + reference.File);
  std::string line;
  std::getline(file, line);
  const std::vector<Row> actual =
      reference.Command == "bode" ? Response(loop) : Trajectory(loop, reference, Split(line));
  for (const Row& row : actual) {
    ASSERT_TRUE(std::getline(file, line));
    Row expected;
    for (const std::string& field : Split(line)) expected.push_back(ParseNumber(field).value());
    ASSERT_EQ(row, expected) << line;
  }
  EXPECT_FALSE(std::getline(file, line)) << line;
  EXPECT_GT(actual.size(), 20U);
}

INSTANTIATE_TEST_SUITE_P(Files, ReferenceTest, testing::ValuesIn(ReadReferences()));

}  // namespace
}  // namespace torvane
