#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "study/part_file.h"
#include "study/row.h"

namespace torvane {
namespace {

StudyIdentity Identity(const std::string& until, const std::string& table,
                       const std::string& share = "1/2") {
  StudyIdentity identity;
  identity.Add("model", "5-1, \"Odd\"\nname ");
  identity.Add("--until", until);
  identity.AddSum("table", table);
  if (!share.empty()) identity.Add(SharePart, share);
  return identity;
}

const StudyIdentity Own = Identity("0.1", "a");
const std::string Head = HeadLine({"KP"}, {"Rise", "Delay"});
const std::map<std::size_t, std::string> Rows{
    {0, RowLine({0, {"1"}, {0.1, -1e-300}, ""})},
    {2, RowLine({2, {"a,b"}, {std::nullopt, 2.0}, "no \"Rise\", as it is"})}};

TEST(StudyIdentity, TellsTheFirstDifference) {
  const StudyIdentity read = StudyIdentity::Parse(Own.Line()).value();
  EXPECT_EQ(Own.Difference(read, true), "");
  EXPECT_EQ(read.Value("model"), "5-1, \"Odd\" name");
  EXPECT_EQ(Own.Difference(Identity("0.3", "b"), true), "--until is 0.3, not 0.1");
  EXPECT_EQ(Own.Difference(Identity("0.1", "b", "2/2"), false), "another table");
  EXPECT_EQ(Own.Difference(Identity("0.1", "a", "2/2"), false), "");
  EXPECT_EQ(Own.Difference(Identity("0.1", "a", "2/2"), true), "share is 2/2, not 1/2");
  EXPECT_EQ(Identity("0.1", "a", "").Difference(Own, true), "share is 1/2, not none");
}

// Every text that the given one becomes when it is cut short or a byte of it is replaced.
std::vector<std::string> Damages(const std::string& text) {
  std::vector<std::string> damages;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    damages.push_back(text.substr(0, i));
    for (const char put : {'\0', '0', ',', 'x', '"', '\xff'}) {
      std::string changed = text;
      changed[i] = put;
      if (changed != text) damages.push_back(changed);
    }
  }
  return damages;
}

TEST(SealedRows, KnowEveryDamage) {
  const SealedRows seals(Own, Head);
  const std::string sealed = seals.Sealed(Rows.at(2));
  EXPECT_EQ(seals.Unsealed(sealed), Rows.at(2));
  EXPECT_EQ(SealedRows(Identity("0.3", "a"), Head).Unsealed(sealed), std::nullopt);
  EXPECT_EQ(SealedRows(Own, HeadLine({"KI"}, {})).Unsealed(sealed), std::nullopt);
  for (const std::string& damaged : Damages(sealed)) {
    EXPECT_EQ(seals.Unsealed(damaged), std::nullopt) << damaged;
  }
  for (const std::string& damaged : Damages(Own.Line())) {
    EXPECT_FALSE(StudyIdentity::Parse(damaged)) << damaged;
  }
}

// As a kill or a power cut leaves it: whole rows, wherever the file ends, and nothing else.
TEST(PartFile, GoesOnFromEveryPrefix) {
  const std::string out = testing::TempDir() + "part_file_test.csv";
  const std::string name = out + ".part";
  const SealedRows seals(Own, Head);
  const std::string text = seals.Begin() + seals.Sealed(Rows.at(0)) + seals.Sealed(Rows.at(2));
  for (std::size_t size = 0; size <= text.size(); size += size + 11 < text.size() ? 11 : 1) {
    std::ofstream(name) << text.substr(0, size) << std::string(size % 3, '\0');
    const bool zeros = size % 3 > 0 && size > 0 && size < seals.Begin().size();
    if (zeros) continue;  // the beginning is on the disk before any row
    std::map<std::size_t, std::string> whole;
    if (size >= text.size() - seals.Sealed(Rows.at(2)).size()) whole.insert(*Rows.begin());
    if (size == text.size()) whole = Rows;
    PartFile part(out, Own, Head);
    EXPECT_EQ(part.TakeRows(), whole) << size;
    part.Append(Rows.at(2));
    part.Flush();
    whole.insert(*Rows.rbegin());
    EXPECT_EQ(PartFile(out, Own, Head).TakeRows(), whole) << size;
    EXPECT_THROW(PartFile(out, Identity("0.3", "a"), Head), StudyFault);
  }
  PartFile(out, Own, Head).Remove();
  EXPECT_FALSE(std::filesystem::exists(name));
}

}  // namespace
}  // namespace torvane
