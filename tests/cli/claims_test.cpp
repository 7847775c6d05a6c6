#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <map>
#include <numeric>
#include <regex>
#include <sstream>

#include "cli/cli_process.h"
#include "cli/program.h"
#include "core/csv_table.h"
#include "core/text.h"
#include "models/experiment.h"
#include "support/expected_lines.h"

namespace torvane::test {
namespace {

const std::string Root = TORVANE_ROOT "/";

/// What torvane-cli answers among the examples, in a process of its own, so that no model's class
/// remembers another run.
std::vector<CsvRow> Answer(const std::vector<std::string>& line) {
  std::vector<const char*> arguments{"torvane-cli"};
  for (const std::string& argument : line) arguments.push_back(argument.c_str());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const pid_t child = fork();
  if (child == 0) {
    const bool there = chdir((Root + "share/examples").c_str()) == 0;
    _exit(there ? cli::RunProgram(static_cast<int>(arguments.size()), arguments.data()) : -1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  const std::string reports = testing::internal::GetCapturedStderr();
  EXPECT_EQ(status, 0) << reports;
  return ParseCsv(testing::internal::GetCapturedStdout());
}

/// A column over the time or frequency.
struct Curve {
  std::vector<double> X;
  std::vector<double> Y;
};

/// Where it rises through the level.
std::vector<double> Rises(const Curve& c, double level) {
  std::vector<double> times;
  for (std::size_t i = 1; i < c.Y.size(); ++i) {
    if (c.Y[i - 1] >= level || c.Y[i] < level) continue;
    const double share = (c.Y[i] - level) / (c.Y[i] - c.Y[i - 1]);
    times.push_back(c.X[i] - share * (c.X[i] - c.X[i - 1]));
  }
  return times;
}

// Without the marks for links and indices.
std::string OneSpaced(const std::string& text) {
  const std::string plain = std::regex_replace(text, std::regex("[][_{}]"), "");
  return std::regex_replace(plain, std::regex("\\s+"), " ");
}

// "hz" is the frequency at which it rises through its mean, "passes L" how far from the first row
// it rises through L.
double Figure(const std::string& what, const Curve& c) {
  const auto [least, most] = std::ranges::minmax_element(c.Y);
  if (what == "max") return *most;
  if (what == "min") return *least;
  if (what == "span") return *most - *least;
  if (what == "change") return c.Y.back() - c.Y.front();
  if (what == "where max") return c.X[static_cast<std::size_t>(most - c.Y.begin())];
  if (what == "where min") return c.X[static_cast<std::size_t>(least - c.Y.begin())];
  const double mean =
      std::accumulate(c.Y.begin(), c.Y.end(), 0.0) / static_cast<double>(c.Y.size());
  if (what == "mean") return mean;
  if (what == "rms") {
    const double squares = std::inner_product(c.Y.begin(), c.Y.end(), c.Y.begin(), 0.0);
    return std::sqrt(squares / static_cast<double>(c.Y.size()));
  }
  const bool passes = what.starts_with("passes");
  const auto rises = Rises(c, passes ? *ParseNumber(what.substr(7)) : mean);
  if (rises.empty()) return NAN;
  if (passes) return rises.front() - c.X.front();
  return static_cast<double>(rises.size() - 1) / (rises.back() - rises.front());
}

// A file of tests/data/claims:
//   text FILE                                   from which the quotes come
//   "..."                                       words that stand there
//   $ ... -> CHECK; CHECK                       what is typed after torvane-cli in share/examples,
//                                               and checks, of which more may stand below:
//   [WHAT] COLUMN [at ...|from ...|to ...] is N a number among those words; what is measured rounds
//                                               to it or, with "+- T", is no farther away
//   ... = N                                     the same of a number that the words do not have
// Without WHAT a column's last value counts, or the first one at or after a time or frequency.
class Claims : public testing::TestWithParam<std::filesystem::path> {
 protected:
  void Follow(const std::string& line) {
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (first == "text") {
      text_ = OneSpaced(ReadWholeFile(Root + line.substr(5)));
    } else if (first.starts_with('"')) {
      quote_ = OneSpaced(line.substr(1, line.size() - 2));
      EXPECT_NE(text_.find(quote_), std::string::npos);
    } else if (first == "$") {
      const std::vector<std::string> parts = Parts(line.substr(2), " -> ");
      std::istringstream typed(parts.front());
      std::vector<std::string> arguments;
      for (std::string word; typed >> std::quoted(word);) arguments.push_back(word);
      rows_ = Answer(arguments);
      if (parts.size() == 1) return;
      for (const std::string& check : Parts(parts[1], "; ")) Check(check);
    } else {
      Check(line);
    }
  }

  void Check(const std::string& line) {
    static const std::regex form(
        "(?:((?:where )?(?:max|min)|span|change|mean|rms|hz|passes \\S+) )?(.+?)(?: at (.+?))?"
        "(?: from (\\S+))?(?: to (\\S+))? (is|=) (([-+]?\\d[.\\d]*)( [^+]+?)?)(?: \\+- (\\S+))?");
    std::smatch part;
    ASSERT_TRUE(std::regex_match(line, part, form) && !rows_.empty());
    const auto number = [&](std::size_t k) { return ParseNumber(part.str(k)); };
    const double from = number(3).value_or(number(4).value_or(-INFINITY));
    const Curve curve =
        Column(part.str(2), number(3) ? "" : part.str(3), from, number(5).value_or(INFINITY));
    ASSERT_FALSE(curve.Y.empty());
    const double is = part[1].matched ? Figure(part.str(1), curve)
                      : number(3)     ? curve.Y.front()
                                      : curve.Y.back();
    const double unit = part.str(9) == " ms" ? 0.001 : 1.0;
    const std::size_t point = part.str(8).find('.');
    const auto digits = point == std::string::npos ? 0 : part.str(8).size() - point - 1;
    const double most = number(10).value_or(0.5 * std::pow(10.0, -static_cast<double>(digits)));
    EXPECT_NEAR(is / unit, *number(8), most * (1 + 1e-9));
    EXPECT_TRUE(part[6] == "=" || quote_.find(part.str(7)) != std::string::npos);
  }

  /// Of the rows between two times or frequencies or, if it is named, of the row with that field.
  Curve Column(const std::string& name, const std::string& row, double from, double to) const {
    const std::vector<std::string>& captions = rows_.front().Fields;
    const auto place = [&](const std::string& caption) {
      return static_cast<std::size_t>(std::ranges::find(captions, caption) - captions.begin());
    };
    const std::size_t x = std::ranges::count(captions, "Frequency") > 0 ? place("Frequency") : 0;
    Curve curve;
    for (std::size_t i = 1; i < rows_.size(); ++i) {
      const std::vector<std::string>& fields = rows_[i].Fields;
      const double at = ParseNumber(fields.at(x)).value_or(0.0);
      if (at < from || at > to || (!row.empty() && std::ranges::count(fields, row) == 0)) continue;
      curve.X.push_back(at);
      curve.Y.push_back(ParseNumber(fields.at(place(name))).value_or(NAN));
    }
    return curve;
  }

 private:
  std::string text_;
  std::string quote_;
  std::vector<CsvRow> rows_;
};

TEST_P(Claims, AreWhatIsMeasured) {
  std::ifstream file(GetParam());
  int number = 0;
  for (const std::string& line : LinesOf(file)) {
    SCOPED_TRACE(GetParam().filename().string() + ":" + std::to_string(++number) + ": " + line);
    if (!line.empty() && line.front() != '#') Follow(line);
  }
}

// The answers of an experiment, as claims of what its file measures.
class Answers : public Claims {
 protected:
  void Check(const Experiment& experiment) {
    std::map<std::string, std::string> options;
    double period = 0.2;  // seconds, where the command has none
    const auto take = [&](const ExperimentSetting& setting) {
      if (setting.Name == "Frequency") period = 1.0 / *ParseNumber(setting.Value);
    };
    for (const ExperimentSetting& setting : experiment.SetUp) take(setting);
    for (const ExperimentStep& step : experiment.Steps) {
      if (step.WhileRunning) continue;
      for (const ExperimentSetting& setting : step.Settings) {
        take(setting);
        SetOption(setting, options);
      }
      std::string settings;
      for (const auto& [option, value] : options) settings += " " + option + value;
      for (const ExperimentAnswer& answer : step.Answers) {
        SCOPED_TRACE(answer.Reading + settings);
        Follow(Command(experiment, answer, period) + settings);
        Follow(Claim(answer, period) + " = " + FormatShortest(answer.Value) + " +- " +
               FormatShortest(answer.Tolerance));
      }
    }
  }

 private:
  static void SetOption(const ExperimentSetting& setting,
                        std::map<std::string, std::string>& options) {
    static const std::map<std::string, std::string> ofAnalyser{
        {"Output", "--output "}, {"Sample Time", "--tsample "}, {"Amplitude", "--amplitude "}};
    static const std::map<std::string, std::string> ofGenerator{{"Waveform", "Waveform"},
                                                                {"Frequency", "FreqHz"},
                                                                {"Amplitude", "Amplitude"},
                                                                {"Offset", "Offset"},
                                                                {"Phase", "PhaseDeg"}};
    if (setting.Of == "Analyser") {
      options[ofAnalyser.at(setting.Name)] = setting.Value;
    } else if (ofGenerator.contains(setting.Name)) {
      const std::string of = setting.Of.empty() ? "" : setting.Of + ":";
      options["--wave \"" + of + ofGenerator.at(setting.Name)] = "=" + setting.Value + "\"";
    } else {
      options["--set \"" + setting.Name] = "=" + setting.Value + "\"";
    }
  }

  /// A screen is read over the last period of the command, after some.
  static std::string Command(const Experiment& of, const ExperimentAnswer& answer, double period) {
    const std::string file = GetParam().stem().string() + ".tvf ";
    if (answer.Signal.empty()) {
      return "$ bode " + file + (answer.AtHz ? "" : "--margins");
    }
    if (!Figures().contains(answer.Reading)) {
      return "$ measure " + file + "--command " + of.Watched.front() + " --response " +
             answer.Signal;
    }
    return "$ run " + file + "--until " + FormatShortest(End(period)) +
           " --every 0.0001 --record " + answer.Signal;
  }

  static std::string Claim(const ExperimentAnswer& answer, double period) {
    if (answer.AtHz) return answer.Reading + " at " + FormatShortest(*answer.AtHz);
    if (answer.Signal.empty()) {
      const bool frequency = answer.Reading.ends_with(" Frequency");
      return std::string(frequency ? "Frequency" : "Value") + " at Smallest " +
             (answer.Reading.starts_with("Gain") ? "gain margin" : "phase margin");
    }
    if (!Figures().contains(answer.Reading)) return answer.Reading;
    return Figures().at(answer.Reading) + " " + answer.Signal + " from " +
           FormatShortest(answer.Reading == "Frequency" ? 0.25 * End(period)
                                                        : End(period) - std::max(period, 0.25));
  }

  static double End(double period) { return period * std::max(4.0, std::ceil(1.0 / period)); }

  static const std::map<std::string, std::string>& Figures() {
    static const std::map<std::string, std::string> figures{
        {"Mean", "mean"},   {"RMS", "rms"},           {"Minimum", "min"},
        {"Maximum", "max"}, {"Peak to peak", "span"}, {"Frequency", "hz"},
    };
    return figures;
  }
};

TEST_P(Answers, AreWhatIsMeasured) {
  std::string fault;
  const auto experiment = ReadExperiment(ReadWholeFile(GetParam()), fault);
  ASSERT_TRUE(experiment) << fault;
  Check(*experiment);
}

std::vector<std::filesystem::path> ExperimentFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& file : std::filesystem::directory_iterator(Root + "share/examples")) {
    if (file.path().extension() == ".experiment") files.push_back(file.path());
  }
  return files;
}

INSTANTIATE_TEST_SUITE_P(Share, Answers, testing::ValuesIn(ExperimentFiles()));

std::vector<std::filesystem::path> ClaimFiles() {
  const std::filesystem::directory_iterator folder(TORVANE_TEST_DATA "/claims");
  return {begin(folder), end(folder)};
}

INSTANTIATE_TEST_SUITE_P(Texts, Claims, testing::ValuesIn(ClaimFiles()), [](const auto& file) {
  return std::regex_replace(file.param.stem().string(), std::regex("-"), "_");
});

TEST(ClaimFiles, TryEveryExample) {
  std::string claims;
  for (const auto& file : ClaimFiles()) claims += ReadWholeFile(file);
  for (const auto& example : std::filesystem::directory_iterator(Root + "share/examples")) {
    const std::string file = example.path().stem().string() + ".tvf";
    EXPECT_NE(claims.find(file), std::string::npos) << file;
  }
}

}  // namespace
}  // namespace torvane::test
