#include <gtest/gtest.h>

#include "plot/drawing.h"
#include "plot/number_axis.h"
#include "plot/study/study_picture.h"
#include "support/expected_lines.h"

namespace torvane {
namespace {

void Expect(const char* name, const Picture& picture) {
  test::ExpectLines(std::string("drawings/") + name + ".txt",
                    test::Drawn([&](QPainter& to) { picture.Paint(to, QSize(420, 300), 1.0); }));
}

TEST(NumberAxis, TicksAreRoundAndNotTooMany) {
  const auto ticks = [](const NumberAxis& axis) {
    QStringList texts;
    for (const double tick : axis.Ticks(8)) texts << TickText(tick);
    return texts.join(' ');
  };
  EXPECT_EQ(ticks({0.03, 0.47}), "0.1 0.2 0.3 0.4");
  EXPECT_EQ(ticks({2.0, 2.0}), "1 1.5 2 2.5 3");
  EXPECT_EQ(ticks({-4000.0, 4000.0}), "-4000 -3000 -2000 -1000 0 1000 2000 3000 4000");
  EXPECT_EQ(ticks({30.0, 400.0, true}), "50 100 200");
  EXPECT_EQ(ticks({0.1, 1000.0, true}), "0.1 1 10 100 1000");
}

// Of five runs one has no trace and one runs far away.
TEST(StudyDrawing, ResponsesWithTheChosenOne) {
  StudyResponses responses{"vF", "sec", {}, 1, "KVP = 2"};
  for (const float size : {1.0F, 1.2F, 0.0F, 0.8F, 1e6F}) {
    responses.Runs.emplace_back();
    if (size == 0.0F) continue;
    for (int i = -50; i < 100; ++i) {
      responses.Runs.back().Times.push_back(0.002F * static_cast<float>(i));
      responses.Runs.back().Values.push_back(i < 0 ? 0.0F
                                                   : size * static_cast<float>(i * (100 - i)));
    }
  }
  for (const auto& [name, chosen] :
       {std::pair<const char*, std::optional<std::size_t>>{"study-responses", 1},
        {"study-wild", 4},
        {"study-all", {}}}) {
    responses.Chosen = chosen;
    Expect(name, StudyResponsesPicture(responses));
  }
  responses.Runs.resize(1);
  Expect("study-one", StudyResponsesPicture(responses));
}

// A grid over a range of decades; one cell was not measured.
TEST(StudyDrawing, MapOfAGrid) {
  StudyMap map{"KVP", "KVI", "Overshoot (%)", {{}}, 4, {}, false};
  auto& runs = map.Slices.front().Runs;
  for (const double x : {0.1, 1.0, 10.0, 100.0}) {
    for (const double y : {20.0, 30.0, 40.0}) runs.push_back({x, y, 5.0 * x + y, runs.size()});
  }
  runs[2].Value.reset();
  Expect("study-grid", StudyMapPicture(map));
}

// Of two slices the second has one cell that does not meet what is required, and one far beyond
// the others.
TEST(StudyDrawing, MapOfSlices) {
  StudyMap map{"KVP", "KVI", "Settling (s)", {}, {}, {}, true};
  for (const double j : {1.0, 2.0}) {
    map.Slices.push_back({"J = " + std::to_string(static_cast<int>(j)), {}});
    for (const double x : {1.0, 2.0, 3.0}) {
      for (const double y : {1.0, 2.0, 3.0}) map.Slices.back().Runs.push_back({x, y, j * x + y});
    }
  }
  map.Slices[1].Runs[3].Meets = false;
  map.Slices[1].Runs[8].Value = 1e6;
  Expect("study-slices", StudyMapPicture(map));
}

// Of sixteen cells most are 0, and one far beyond the others must not take their colours.
TEST(StudyDrawing, MapOfMostlyOneValue) {
  StudyMap map{"KVP", "KVI", "Overshoot (%)", {{}}, {}, {}, false};
  auto& runs = map.Slices.front().Runs;
  for (int k = 0; k < 16; ++k) {
    runs.push_back({1.0 + k % 4, 1.0 + k / 4, k < 11 ? 0.0 : 5.0 * (k - 10), runs.size()});
  }
  const auto drawn = [&] {
    std::string lines;
    const auto paint = [&](QPainter& to) { StudyMapPicture(map).Paint(to, QSize(420, 300), 1.0); };
    for (const std::string& line : test::Drawn(paint)) lines += line + "\n";
    return lines;
  };
  EXPECT_NE(drawn().find("'0' '5' '10' '15' '20'"), std::string::npos) << drawn();
  runs.back().Value = 1e6;
  EXPECT_NE(drawn().find("'0' '5' '10' '15' '20'"), std::string::npos) << drawn();
}

TEST(StudyDrawing, MapOfSamples) {
  Expect("study-samples", StudyMapPicture({"KVP",
                                           "J",
                                           "RiseTime (sec)",
                                           {{"",
                                             {{0.2, 0.001, 0.004, 0},
                                              {1.1, 0.003, 0.002, 1},
                                              {1.9, 0.002, {}, 2},
                                              {1.5, 0.0005, 0.001, 3}}}},
                                           1,
                                           {},
                                           false}));
  const StudyMap decades{
      "",   "",
      "",   {{"", {{0.01, 1.0, 4.0}, {1.0, 30.0, -2.0}, {100.0, 1e3, {}}, {5.0, 2.0, 1.0}}}},
      {},   {},
      false};
  Expect("study-decades", StudyMapPicture(decades));
}

}  // namespace
}  // namespace torvane
