#include <gtest/gtest.h>

#include <sstream>

#include "cli/cli_process.h"
#include "support/expected_lines.h"

namespace torvane::test {
namespace {

// A file of tests/data/cli: what a user types after "$ ", and what the program answers: standard
// output, each line of standard error after "! ", and in brackets, behind the last of these, an
// exit code that is not 0.
class Transcript : public testing::TestWithParam<std::string> {};

TEST_P(Transcript, GoesAsWritten) {
  const std::string name = "cli/" + GetParam() + ".txt";
  std::ifstream file(TORVANE_TEST_DATA "/" + name);
  std::vector<std::string> lines;
  bool answered = false;
  for (const std::string& line : LinesOf(file)) {
    const bool typed = line.starts_with("$ ");
    if (!typed && answered && !line.empty() && line.front() != '#') continue;
    if (!line.empty()) answered = typed;
    lines.push_back(line);
    if (!typed) continue;
    const Outcome outcome = Shell(line.substr(2));
    std::istringstream out(outcome.Out);
    std::istringstream err(outcome.Err);
    for (const std::string& said : LinesOf(out)) lines.push_back(said);
    for (const std::string& said : LinesOf(err)) lines.push_back("! " + said);
    if (outcome.Code == 0) continue;
    const std::string code = "[" + std::to_string(outcome.Code) + "]";
    if (outcome.Err.empty()) {
      lines.push_back(code);
    } else {
      lines.back() += " " + code;
    }
  }
  ExpectLines(name, lines);
}

std::vector<std::string> Transcripts() {
  std::vector<std::string> names{"usage",     "run",     "tables", "model_files",
                                 "responses", "studies", "theory", "loops"};
#ifdef TORVANE_PICTURES
  names.push_back("pictures");
#endif
  return names;
}

INSTANTIATE_TEST_SUITE_P(Files, Transcript, testing::ValuesIn(Transcripts()),
                         [](const auto& transcript) { return transcript.param; });

}  // namespace
}  // namespace torvane::test
