#include <cmath>

#include "core/bench.h"
#include "core/constant.h"
#include "linear/linearize.h"
#include "loops/shipped.h"

// What a loop is while it runs: begun anew, with constants that change, and when it diverges.

namespace torvane::loops {
namespace {

// Steps and periods are powers of two, so that times are exact wherever a run begins.
constexpr double Step = 1.0 / 1024;
constexpr const char* AllSorts = R"(model R
  parameter Real gain(min = -9, max = 9) = 1; parameter Real other = 1; parameter Real Ts(min = 0) = 1/256;
  parameter Real f(min = -1, max = 1e4) = 9; parameter Real limit(min = -5, max = 5) = 3;
  parameter Real a0(min = 0, max = 1) = 1; parameter Real T(min = -1, max = 1e9) = 0.02;
  final parameter Real inverse = 1 / gain;
  Real x(start = 0.5); Real near(start = 1) = other * x; Real mean = inverse * (notch.y + hold.y + dead.y);
  Real twoInertia = two.vM + two.aM; Real sampled = filter.y + low.y + pi.y + z.y + delayed.y;
  Real rubbed = friction.tau + memory.y + linear.y + slew.y + lim.y; discrete Real k; discrete Real j;
  Torvane.Continuous.TwoPoleTwoZero notch(u = x, fPole = f, zetaPole = 0.5, fZero = 20, zetaZero = 0.5);
  Torvane.Continuous.DeadTime dead(u = x, T = T); Torvane.Continuous.Memory memory(u = x);
  Torvane.Continuous.TransferFunction linear(u = x, b = {1}, a = {a0, 2, 1});
  Torvane.Nonlinear.SlewRateLimiter slew(u = x, rising = 1); Torvane.Nonlinear.Limiter lim(u = x, yMax = limit, yMin = 0);
  Torvane.Mechanics.Friction friction(p = 2 + x, v = mean, TC = 0.1 * other, TS = 0.2, PS = 0.01);
  Torvane.Mechanics.TwoInertia two(tau = x, JM = 1, JL = 2, KS = 3, KCV = 0.4, TCM = 0.1 * other, TSM = 0.2, PSM = 0.1);
  Torvane.Discrete.TwoPoleTwoZero filter(u = 1 + x, fPole = f, zetaPole = 0.5, fZero = 20, zetaZero = 0.5, samplePeriod = Ts);
  Torvane.Discrete.LowPass2 low(u = x, f = f, samplePeriod = Ts);
  Torvane.Discrete.PI pi(u = 1, u_m = x, kVP = 0.2, kVI = 3, yMax = limit + 9, samplePeriod = Ts);
  Torvane.Discrete.TransferFunction z(u = 1, b = {1}, a = {1, -0.5}, samplePeriod = Ts);
  Torvane.Discrete.UnitDelay delayed(u = x, samplePeriod = Ts);
  Torvane.Discrete.ZeroOrderHold hold(u = x, samplePeriod = Ts, delay = 1/512);
equation
  der(x) = pi.y - x + 0.1 * k - mean / 8;
  when sample(1/512, 1/128) then k = pre(k) + 1; j = pre(x); end when;
  when x > 2 then reinit(x, 0); end when;
  annotation(experiment(Interval = 1/1024));
end R;)";

std::unique_ptr<ZelModel> Loop(const std::string& text) {
  const LoopReading reading = ReadLoop(text);
  for (const Problem& problem : reading.Problems) ADD_FAILURE() << problem.Text;
  return reading.Plan ? MakeLoop("loop", reading.Plan) : nullptr;
}

using Rows = std::vector<std::vector<double>>;

Rows RowsOf(ZelModel& model, int steps) {
  Rows rows;
  for (int i = 0; i < steps; ++i) {
    model.Solver().RunUntil(model.Time() + 0.5 * Step);
    rows.emplace_back();
    for (const Variable* signal : model.Bench().Variables()) rows.back().push_back(signal->Value);
  }
  return rows;
}

TEST(RunningLoopTest, BeginsAnewAsOneThatWasJustMade) {
  const Rows fresh = RowsOf(*Loop(AllSorts), 300);
  EXPECT_NE(fresh[40], fresh[299]);
  for (const bool everything : {true, false}) {
    const auto model = Loop(AllSorts);
    for (const int before : {1, 10, 307}) {
      RowsOf(*model, before);
      everything ? model->ResetEverything() : model->Reset();
      ASSERT_EQ(RowsOf(*model, 300), fresh) << before << " steps before";
    }
  }
}

TEST(RunningLoopTest, TorquesOfTwoInertiasAreInBalance) {
  const auto model = Loop(R"(model R
  Torvane.Mechanics.TwoInertia two(tau = 1, JM = 1, JL = 2, KS = 3, KCV = 0.4);
  Real offMotor = 1 - two.tauShaft - two.aM; Real offLoad = two.tauShaft - 2 * two.aL;
  annotation(experiment(Interval = 1/1024));
end R;)");
  RowsOf(*model, 2000);
  for (const Variable* signal : model->Bench().Variables()) {
    if (!signal->Name().starts_with("off")) continue;
    EXPECT_NEAR(signal->Value, 0.0, 1e-12) << signal->Name();
  }
}

TEST(RunningLoopTest, KeepsItsPastWhenConstantsChange) {
  const auto untouched = Loop(AllSorts);
  const auto touched = Loop(AllSorts);
  // No sample is due then.
  RowsOf(*untouched, 101);
  RowsOf(*touched, 101);
  for (const auto& [name, aside] : {std::pair{"f", 5.0}, {"other", 2.0}, {"limit", 4.0}}) {
    Constant& constant = *touched->Bench().FindConst(name);
    const double value = constant.Value();
    // Handed on, and taken back before a step goes by.
    constant.Set(aside);
    touched->Derivatives(touched->Time());
    constant.Set(value);
    ASSERT_EQ(RowsOf(*touched, 50), RowsOf(*untouched, 50)) << name;
  }
}

TEST(RunningLoopTest, StartsWhereItsConstantsSayUntilItMoves) {
  const auto loop = [](const std::string& from) {
    return Loop("model R parameter Real from = " + from +
                "; Real x(start = from); Real y = late.y; discrete Real k(start = from);"
                "Torvane.Continuous.DeadTime late(u = x, T = 0.02, start = from);"
                "equation der(x) = 1; when sample(0, 1/256) then k = pre(k) + 1; end when;"
                "annotation(experiment(Interval = 1/1024)); end R;");
  };
  const auto told = loop("1");
  told->Bench().FindConst("from")->Set(2);
  EXPECT_EQ(RowsOf(*told, 40), RowsOf(*loop("2"), 40));
  const double x = told->Bench().FindVar("x")->Value;
  told->Bench().FindConst("from")->Set(5);
  RowsOf(*told, 1);
  EXPECT_EQ(told->Bench().FindVar("x")->Value, x + Step);
}

TEST(RunningLoopTest, HasItsPictureAndTermsThatBeginWithAPlus) {
  const auto model = Loop(
      "model R Real x; Real y = +x - (+3 * x); equation der(x) = +1;"
      "annotation(experiment(Interval = 1/1024), __Torvane(picture = \"loop.png\")); end R;");
  EXPECT_EQ(model->PictureFile(), "loop.png");
  RowsOf(*model, 1);
  EXPECT_EQ(model->Bench().FindVar("y")->Value, -2 * model->Bench().FindVar("x")->Value);
  EXPECT_EQ(model->Bench().FindVar("x")->Value, Step);
}

TEST(RunningLoopTest, ADeadTimeThatChangesKeepsToWhatWasRecorded) {
  const auto model = Loop(
      "model R parameter Real T = 8/1024; Real y = delay(1 + time, T);"
      "annotation(experiment(Interval = 1/1024)); end R;");
  Constant& t = *model->Bench().FindConst("T");
  RowsOf(*model, 100);
  t.Set(1);
  RowsOf(*model, 1);  // no longer ago than what is kept
  EXPECT_NEAR(model->Bench().FindVar("y")->Value, 1 + 91 * Step, 2 * Step);
  EXPECT_THROW(Linearize(*model), std::runtime_error);
  t.Set(2 * Step);
  RowsOf(*model, 1);
  EXPECT_NO_THROW(Linearize(*model));
}

struct Change {
  const char* Constant;
  double Value;
  const char* Told;
};

TEST(RunningLoopTest, ToldWhatIsWrongWithAConstantItGoesOnWhenThatIsMended) {
  const auto untouched = Loop(AllSorts);
  const auto model = Loop(AllSorts);
  for (const auto& [name, bad, told] : {
           Change{"gain", 0, "\"inverse\" comes to no number"},
           Change{"Ts", 0, "the sample period is 0 s; it must be above 0"},
           Change{"f", -1, "notch: neither frequency nor damping may be below 0"},
           Change{"limit", -1, "lim: yMin is above yMax"},
           Change{"a0", 0, "linear: a must not begin with 0"},
           Change{"T", -1, "dead: T must not be below 0"},
           Change{"T", 1e8, "dead: T is longer than 1000000 steps of the solver"},
       }) {
    Constant& constant = *model->Bench().FindConst(name);
    const double good = constant.Value();
    constant.Set(bad);
    for (int tries = 0; tries < 2; ++tries) {
      try {
        model->Solver().RunUntil(model->Time() + 1);
        ADD_FAILURE() << name;
      } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find(told), std::string::npos) << error.what();
      }
    }
    constant.Set(good);
    ASSERT_EQ(RowsOf(*model, 30), RowsOf(*untouched, 30)) << name;
  }
  model->Bench().FindConst("a0")->Set(0);
  EXPECT_THROW(Linearize(*model), std::runtime_error);
}

TEST(RunningLoopTest, StopsWhenASignalIsNoNumber) {
  const std::pair<const char*, const char*> cases[] = {
      {"Real z = sqrt(0.5 - x);", "signal \"z\" is not a number at time 0.5"},
      {"Real z = 1 / (x - x);", "signal \"z\" is infinite at time 0.0009765625 s"},
      {"Real z = x * sqrt(-1 - 0 * p);", "signal \"z\" is not a number at time 0.0009765625 s"},
      {"Torvane.Nonlinear.Limiter l(u = log(-1 - x), yMax = 1);",
       "what block \"l\" works on is not"},
      {"Real z = atan(1 / (x - x));", ""},
  };
  for (const auto& [declaration, told] : cases) {
    const auto model =
        Loop("model R parameter Real p = 1; Real x; protected " + std::string(declaration) +
             "equation der(x) = 1; annotation(experiment(Interval = 1/1024)); end R;");
    std::string stopped;
    try {
      model->Solver().RunUntil(1.0);
    } catch (const SolverOverflow& overflow) {
      stopped = overflow.what();
    }
    EXPECT_TRUE(*told ? stopped.starts_with(told) : stopped.empty()) << stopped;
  }
}

// Each is told at once, though a machine of it would be larger than any memory, or the search for
// what was meant longer than an evening.
TEST(RunningLoopTest, HugeTextsAreRefused) {
  struct Huge {
    const char* Head;
    const char* Piece;
    int Count;
    const char* Tail;
    const char* Told;
  };
  const Huge cases[] = {
      {"parameter Integer n(min = 1e17, max = 1e17) = 1e17;", "", 0, "", "whole numbers up to 1e9"},
      {"Torvane.Continuous.DeadTime d(u = 1, T = sqrt(-1));", "", 0, "",
       "\"d.T\" comes to no number"},
      {"Torvane.Discrete.TransferFunction t(u = 1, samplePeriod = 1, b = {1}, a = {1", ",1", 15000,
       "});", "the loop has 15000 states"},
      {"Real x = 0", "+delay(1,9)", 40, ";", "longer than 4000000 steps"},
      {"Real x = 0", "+delay(1,0)", 90, ";", ""},
      {"type E = enumeration(a", ",a@", 3000, "); parameter E e = E.a;", "at most"},
      {"Real y = 1;", "Real @ = nemo@;", 3000, "", "unknown name \"nemo0\""},
      {"", "parameter Integer n@(min=0,max=999)=1;", 1500, "", "at most 500 parameters"},
      {"Real x; equation ", "when sample(0, @ + 1) then x = 1; end when;", 1200, "",
       "at most 100 sample periods"},
      {"parameter Real p = 1; Real x = 1;", "Real @=x+(p+@);", 900, "", ""},
  };
  for (const Huge& huge : cases) {
    std::string text = std::string("model M ") + huge.Head;
    for (int i = 0; i < huge.Count; ++i) {
      std::string piece = huge.Piece;
      const std::string name = piece.starts_with("Real") ? "v" : "";
      for (std::size_t at = piece.find('@'); at != std::string::npos; at = piece.find('@')) {
        piece.replace(at, 1, (at == 5 ? name : "") + std::to_string(i));
      }
      text += piece;
    }
    const LoopReading reading = ReadLoop(text + huge.Tail + " end M;");
    std::string all;
    for (const Problem& problem : reading.Problems) all += problem.Text + "\n";
    EXPECT_TRUE(*huge.Told ? all.find(huge.Told) != std::string::npos : all.empty())
        << huge.Piece << all.substr(0, 300);
    EXPECT_EQ(reading.Plan != nullptr, !*huge.Told);
  }
}

}  // namespace
}  // namespace torvane::loops
