#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "models/catalogue.h"
#include "models/catalogue_host.h"
#include "support/model_limits.h"
#include "support/pooled_host.h"
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
  std::ifstream file(std::string(TORVANE_TEST_DATA) + "/malformed.txt");
  std::vector<MalformedCase> cases(1);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("#")) continue;
    MalformedCase& last = cases.back();
    if (line.empty()) {
      if (!last.Lines.empty()) cases.emplace_back();
    } else if (line.starts_with("! ")) {
      std::string report = line.substr(2);
      Replace(report, "<LINE>", last.Lines.front());
      Replace(report, "<CR>", "\r");
      last.Reports.push_back(report);
    } else {
      last.Lines.push_back(line);
    }
  }
  if (cases.back().Lines.empty()) cases.pop_back();
  return cases;
}

std::string Text(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// "..." at the end stands for the rest of a longer report.
bool Matches(const std::string& report, const std::string& expected) {
  if (!expected.ends_with("...")) return report == expected;
  return report.starts_with(expected.substr(0, expected.size() - 3));
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
    const Messages reports = messages.Take();
    EXPECT_EQ(reports.size(), wrong.Reports.size());
    for (std::size_t i = 0; i < std::min(reports.size(), wrong.Reports.size()); ++i) {
      EXPECT_TRUE(Matches(reports[i], wrong.Reports[i])) << reports[i];
    }
    ExpectUsable(host);
    // What it left is saved and loaded without a report.
    const std::string saved = ModelFileText(*host.Model);
    CatalogueHost again;
    EXPECT_TRUE(LoadModelText(saved, again));
    EXPECT_EQ(messages.Take(), Messages{});
    EXPECT_EQ(ModelFileText(*again.Model), saved);
  }
}

// One model with every kind of instrument stands for all: the reader does not know one from
// another.
std::string SavedWithMeter() {
  CatalogueHost host(LoadModel(FindModel("3-1 PI Controller")));
  host.AddMeter("M");
  return ModelFileText(*host.Model);
}

TEST(MalformedModelFile, EveryPrefixLoads) {
  test::Recorder messages;
  const std::string whole = SavedWithMeter();
  test::PooledHost host;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    host.ChangeModel("3-1 PI Controller");
    LoadModelText(std::string_view(whole).substr(0, length), host);
    ExpectUsable(host);
    // At most the line that is cut has something wrong with it.
    EXPECT_LE(messages.Take().size(), 2U) << whole.substr(0, length);
  }
}

TEST(MalformedModelFile, EveryByteMayBeAnother) {
  test::Recorder messages;
  messages.Answer = false;
  const std::string whole = SavedWithMeter();
  test::PooledHost host;
  constexpr std::string_view nasty("\0,\n-9\xff", 6);
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const std::size_t choice : {at % 3, at % 3 + 3}) {
      std::string changed = whole;
      changed[at] = nasty[choice];
      host.ChangeModel("3-1 PI Controller");
      LoadModelText(changed, host);
      ExpectUsable(host);
    }
  }
}

}  // namespace
}  // namespace torvane
