#include "linear/analyser_theory.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/constant.h"
#include "instruments/analyser/margins.h"
#include "instruments/fft/fft_analyser.h"
#include "linear/root_locus.h"
#include "models/catalogue.h"

namespace torvane::test {
namespace {

/// A model that runs, and theory that follows it.
struct Followed {
  explicit Followed(const std::string& name) : Model(Catalogue().Load(name)) {
    ResponseView view;
    view.Theory = true;
    Xfer.SetView(view);
    for (std::size_t i = 0; i < Xfer.Setups().size(); ++i) {
      if (Xfer.Setups()[i].Name == "Open") Xfer.SelectSetup(static_cast<int>(i));
    }
  }
  bool Follow() {
    Theory.Update();
    return Pair.Follow(Theory);
  }
  Margins Read() { return MarginReader().Read(Xfer, ZelXfer::TheorySlot); }

  std::unique_ptr<ZelModel> Model;
  ZelXfer& Xfer =
      dynamic_cast<ZelXfer&>(*Model->Bench().Instruments(InstrumentKind::FftAnalyser).front());
  ModelTheory Theory{*Model, [this] { return Catalogue().Load(Model->Name()); }};
  AnalyserTheory Pair{Xfer};
};

// 6-1 has the margins of its equations; what the steps of the engine add is the tolerance.
TEST(AnalyserTheory, FollowsConstantsAndPair) {
  Followed followed("6-1 PID Controller");
  followed.Xfer.SetTSample(0.00025);
  EXPECT_TRUE(followed.Follow());
  EXPECT_FALSE(followed.Follow());
  EXPECT_NEAR(followed.Read().SmallestPhaseMargin()->Value, 63.03, 0.06);
  EXPECT_NEAR(followed.Read().SmallestGainMargin()->Value, 17.53, 0.06);
  Constant& gain = *followed.Model->Bench().FindConst("KVP");
  const double before = gain.Value();
  gain.Set(100.0);
  EXPECT_TRUE(followed.Follow());
  EXPECT_FALSE(followed.Xfer.HasData(ZelXfer::TheorySlot));
  EXPECT_EQ(followed.Xfer.ShownDoubts().back(),
            "No theory: the loop is unstable: it has no response.");
  gain.Set(before);
  EXPECT_TRUE(followed.Follow());
  followed.Xfer.SetOutput("vC");
  EXPECT_FALSE(followed.Xfer.TheoryKnown());
  EXPECT_TRUE(followed.Follow());
}

// The ways of the poles begin and end with those of the range's ends, and no one jumps to another.
TEST(RootLocus, FollowsThePolesOverADecadeToEitherSide) {
  Followed followed("3-1 PI Controller");
  Constant& gain = *followed.Model->Bench().FindConst("KP");
  RootLocus locus(followed.Theory, gain);
  EXPECT_DOUBLE_EQ(locus.From(), 0.06);
  EXPECT_DOUBLE_EQ(locus.To(), 6.0);
  while (!locus.Done()) locus.Go();
  const auto ways = locus.Ways();
  ASSERT_EQ(ways.size(), 6u);
  const auto has = [](const std::vector<Root>& poles, std::complex<double> pole) {
    return std::ranges::any_of(
        poles, [&](const Root& one) { return std::abs(one.Value - pole) < 1e-3 * std::abs(pole); });
  };
  for (const auto& way : ways) {
    EXPECT_EQ(way.size(), static_cast<std::size_t>(RootLocus::Values));
    EXPECT_TRUE(has(followed.Theory.With("KP", 0.06).Poles(), way.front()));
    EXPECT_TRUE(has(followed.Theory.With("KP", 6.0).Poles(), way.back()));
  }
  gain.Set(3.0);
  EXPECT_TRUE(locus.IsCurrent());
  followed.Model->Bench().FindConst("KI")->Set(3.0);
  EXPECT_FALSE(locus.IsCurrent());
}

}  // namespace
}  // namespace torvane::test
