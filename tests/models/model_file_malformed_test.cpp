#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "models/catalogue.h"
#include "models/catalogue_host.h"
#include "support/expected_lines.h"
#include "support/model_limits.h"
#include "support/recorder.h"

// Files that are not as they should be: what is reported, and that no setting leaves its limits.

namespace torvane {
namespace {

using test::Messages;

struct MalformedCase {
  std::vector<std::string> Lines;
  Messages Reports;
};

void Replace(std::string& text, const std::string& mark, const std::string& by) {
  const auto at = text.find(mark);
  if (at != std::string::npos) text.replace(at, mark.size(), by);
}

std::vector<MalformedCase> ReadCases() {
  std::vector<MalformedCase> cases;
  for (const std::string& row : test::LinesOfData("malformed.txt")) {
    if (row.empty() || row.starts_with("#")) continue;
    const std::vector<std::string> sides = test::Parts(row, " -> ");
    cases.push_back({test::Parts(sides[0], "; "), {}});
    if (sides.size() > 1) cases.back().Reports = test::Parts(sides[1], "; ");
    for (std::string& report : cases.back().Reports) {
      Replace(report, "<LINE>", cases.back().Lines.front());
      Replace(report, "<CR>", "\r");
    }
  }
  return cases;
}

std::string Text(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

void ExpectUsable(ModelFileHost& host) {
  ASSERT_TRUE(host.CurrentModel());
  EXPECT_EQ(test::LimitCheck::Run(*host.CurrentModel()), "");
}

TEST(MalformedModelFile, IsReportedAsTheTableSays) {
  const auto cases = ReadCases();
  EXPECT_GT(cases.size(), 100U);
  for (const MalformedCase& wrong : cases) {
    SCOPED_TRACE(Text(wrong.Lines));
    test::Recorder messages;
    CatalogueHost host(LoadModel(FindModel("3-1 PI Controller")));
    LoadModelText(Text(wrong.Lines), host);
    EXPECT_EQ(messages.Take(), wrong.Reports);
    ExpectUsable(host);
  }
}

// One model with every kind of instrument stands for all: the reader does not know one from
// another. No line knows of another, either.
TEST(MalformedModelFile, EveryLineMayBeCutAnywhereAndEveryByteMayBeAnother) {
  test::Recorder messages;
  messages.Answer = false;
  CatalogueHost host(LoadModel(FindModel("3-1 PI Controller")));
  host.AddMeter("M");
  std::istringstream saved(ModelFileText(*host.Model));
  constexpr std::string_view nasty("\0,\n-9\xff", 6);
  for (std::string line; std::getline(saved, line);) {
    for (std::size_t at = 0; at < line.size(); ++at) {
      messages.Take();
      LoadModelText(line.substr(0, at), host);
      EXPECT_LE(messages.Take().size(), 2U) << line.substr(0, at);
      std::string changed = line;
      changed[at] = nasty[at % nasty.size()];
      LoadModelText(changed, host);
      ExpectUsable(host);
    }
  }
}

}  // namespace
}  // namespace torvane
