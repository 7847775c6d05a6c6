#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <thread>

#include "core/messages.h"
#include "core/run_loop.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "models/loop.h"

// Models of one class at work in several threads, each with what it remembers to itself.

namespace torvane {
namespace {

std::unique_ptr<ZelModel> OwnModel(const std::string& name) {
  auto model = LoadModel(FindModel(name));
  model->KeepOwnMemory();
  return model;
}

/// The signals after a while with scope and sweep at work, and every point of the sweep.
std::vector<double> Outcome(ZelModel& model, double until) {
  while (model.Time() < until) RunPass(model, {}, until);
  return test::Values(model);
}

void StartSweep(ZelModel& model) {
  for (Instrument* sweep : model.Bench().Instruments(InstrumentKind::SweptSine)) {
    auto& analyser = dynamic_cast<ZelSweptDSA&>(*sweep);
    analyser.SetStartFreq(1000.0);
    analyser.SetEndFreq(100.0);
    analyser.Run();
  }
}

void InThread(const std::function<void()>& work) {
  std::thread(work).join();
}

TEST(Threads, TwoAtOnceGiveTheBitsOfOneAfterTheOther) {
  using Outcomes = std::vector<std::vector<double>>;
  const std::vector<std::string> names = ModelNames();
  const auto run = [&](Outcomes& outcomes) {
    for (const std::string& name : names) {
      const auto model = OwnModel(name);
      StartSweep(*model);
      outcomes.push_back(Outcome(*model, 0.05));
    }
  };
  Outcomes alone;
  Outcomes again;
  Outcomes beside;
  run(alone);
  run(again);
  EXPECT_EQ(again, alone);
  std::thread other([&] { run(beside); });
  again.clear();
  run(again);
  other.join();
  EXPECT_EQ(again, alone);
  EXPECT_EQ(beside, alone);
}

// Two halves in threads that have run others of its class, one of them between the halves.
TEST(Threads, AModelGoesOnInAnother) {
  for (const std::string& name : ModelNames()) {
    SCOPED_TRACE(name);
    const auto whole = OwnModel(name);
    const auto halves = OwnModel(name);
    StartSweep(*whole);
    StartSweep(*halves);
    const auto once = Outcome(*whole, 0.04);
    InThread([&] { Outcome(*halves, 0.0203); });
    Outcome(*OwnModel(name), 0.01);
    Outcome(*LoadModel(FindModel(name)), 0.01);
    EXPECT_EQ(Outcome(*halves, 0.04), once);
  }
}

// Without a memory of its own a model goes on from what its class has seen in this thread alone.
TEST(Threads, EachHasItsClassMemory) {
  const auto run = [] { return Outcome(*LoadModel(FindModel("5-1 Aliasing")), 0.003); };
  std::vector<double> first;
  InThread([&] {
    first = run();
    EXPECT_NE(run(), first);
  });
  InThread([&] { EXPECT_EQ(run(), first); });
}

TEST(Threads, EachHasItsReports) {
  test::Recorder here;
  InThread([] {
    Error("to nobody");
    test::Recorder there;
    Error("there");
    EXPECT_EQ(there.Take(), test::Messages{"Error: there"});
  });
  Error("here");
  EXPECT_EQ(here.Take(), test::Messages{"Error: here"});
}

}  // namespace
}  // namespace torvane
