#include "loops/blocks/continuous.h"

#include <memory>

#include "library/low_pass1.h"
#include "library/low_pass2.h"
#include "library/notch.h"
#include "library/two_inertia_mechanism.h"

namespace torvane::loops {

namespace {

/// One input, one output.
template <class Derived, class Filter>
class FilterBlock : public LibraryBlock<Derived, Filter> {
 public:
  // All that a filter remembers lies in the registers: on a copy, nothing goes to memory in vain.
  void Update(const Moment& /*now*/) final {
    Filter filter = this->library_;
    this->Evaluate(filter);
  }
  void TakeInputs(Filter& filter) { filter.SetInput(*u_); }
  void HandOutputs(const Filter& filter) { *y_ = filter.Output(); }

 protected:
  FilterBlock(const Wiring& wiring, const Filter& filter)
      : LibraryBlock<Derived, Filter>(wiring, filter), u_(wiring.Input(0)), y_(wiring.Output(0)) {}

 private:
  const double* u_;
  double* y_;
};

class LowPass1Block final : public FilterBlock<LowPass1Block, LowPass1> {
 public:
  explicit LowPass1Block(const BlockMaking& making) : FilterBlock(making.Numbers, LowPass1(0.0)) {}
  void Prepare() override { library_.SetFrequency(wiring_.Parameter(0)); }
};

class LowPass2Block final : public FilterBlock<LowPass2Block, LowPass2> {
 public:
  explicit LowPass2Block(const BlockMaking& making)
      : FilterBlock(making.Numbers, LowPass2(0.0, 0.0)) {}
  void Prepare() override {
    library_.SetFrequency(wiring_.Parameter(0));
    library_.SetDamping(wiring_.Parameter(1));
  }
};

class NotchBlock final : public FilterBlock<NotchBlock, Notch> {
 public:
  explicit NotchBlock(const BlockMaking& making) : FilterBlock(making.Numbers, Notch(0.0, 0.0)) {}
  void Prepare() override {
    library_.SetFrequency(wiring_.Parameter(0));
    library_.SetDamping(wiring_.Parameter(1));
  }
};

class TwoPoleTwoZeroBlock final : public FilterBlock<TwoPoleTwoZeroBlock, Notch> {
 public:
  explicit TwoPoleTwoZeroBlock(const BlockMaking& making)
      : FilterBlock(making.Numbers, Notch(0.0, 0.0)) {}
  void Prepare() override {
    library_ = Notch(wiring_.Parameter(0), wiring_.Parameter(1), wiring_.Parameter(2),
                     wiring_.Parameter(3));
  }
};

class TwoInertiaBlock final : public LibraryBlock<TwoInertiaBlock, TwoInertiaMechanism> {
 public:
  explicit TwoInertiaBlock(const BlockMaking& making)
      : LibraryBlock(making.Numbers,
                     TwoInertiaMechanism({.JM = 1.0, .JL = 1.0, .KS = 1.0, .KCV = 1.0})) {}

  const char* Fault() const override {
    for (const std::size_t inertia : {0U, 1U}) {
      if (!(wiring_.Parameter(inertia) > 0.0)) return "JM and JL must be above 0";
    }
    for (std::size_t i = 2; i < wiring_.ParameterCount(); ++i) {
      if (!(wiring_.Parameter(i) >= 0.0)) return "no parameter may be below 0";
    }
    if (wiring_.Parameter(4) == 0.0) return "gear must be above 0";
    if (wiring_.Parameter(8) == 0.0 || wiring_.Parameter(12) == 0.0) {
      return "PSM and PSL must be above 0";
    }
    return nullptr;
  }

  void Prepare() override {
    if (Fault()) return;
    // What sticks stays stuck unless the friction itself has changed.
    const std::vector<double> fixed = Fixed();
    if (fixed != fixed_) {
      fixed_ = fixed;
      library_ = TwoInertiaMechanism({1.0,
                                      1.0,
                                      1.0,
                                      1.0,
                                      fixed[0],
                                      fixed[1],
                                      {fixed[2], fixed[3], fixed[4]},
                                      fixed[5],
                                      {fixed[6], fixed[7], fixed[8]}});
    }
    library_.SetJM(wiring_.Parameter(0));
    library_.SetJL(wiring_.Parameter(1));
    library_.SetKS(wiring_.Parameter(2));
    library_.SetKCV(wiring_.Parameter(3));
  }

  void TakeInputs(TwoInertiaMechanism& mechanism) {
    mechanism.SetMotorTorque(*wiring_.Input(0));
    mechanism.SetLoadTorque(*wiring_.Input(1));
    mechanism.SetSecondMotorTorque(*wiring_.Input(2));
  }

  void HandOutputs(const TwoInertiaMechanism& mechanism) {
    *wiring_.Output(0) = mechanism.Motor().Velocity;
    *wiring_.Output(1) = mechanism.Motor().Position;
    *wiring_.Output(2) = mechanism.Load().Velocity;
    *wiring_.Output(3) = mechanism.Load().Position;
    *wiring_.Output(4) = mechanism.Motor().Acceleration;
    *wiring_.Output(5) = mechanism.Load().Acceleration;
    *wiring_.Output(6) = mechanism.ShaftTorque();
  }

 private:
  std::vector<double> Fixed() const {
    std::vector<double> values;
    for (std::size_t i = 4; i < wiring_.ParameterCount(); ++i) {
      values.push_back(wiring_.Parameter(i));
    }
    return values;
  }

  std::vector<double> fixed_;
};

template <int Count>
int States(const Placing& /*placing*/) {
  return Count;
}

}  // namespace

std::vector<BlockType> LibraryBlockTypes() {
  constexpr auto late = BlockType::Timing::Late;
  return {
      {"Torvane.Continuous.LowPass1",
       late,
       {{"u"}},
       {{"f", "Hz"}},
       {"y"},
       BlockCode::Of<LowPass1Block>(),
       States<1>},
      {"Torvane.Continuous.LowPass2",
       late,
       {{"u"}},
       {{"f", "Hz"}, {"zeta", "1", "0.707"}},
       {"y"},
       BlockCode::Of<LowPass2Block>(),
       States<2>},
      {"Torvane.Continuous.Notch",
       late,
       {{"u"}},
       {{"f", "Hz"}, {"zeta", "1", "0.707"}},
       {"y"},
       BlockCode::Of<NotchBlock>(),
       States<2>},
      {"Torvane.Continuous.TwoPoleTwoZero",
       late,
       {{"u"}},
       {{"fPole", "Hz"}, {"zetaPole", "1"}, {"fZero", "Hz"}, {"zetaZero", "1"}},
       {"y"},
       BlockCode::Of<TwoPoleTwoZeroBlock>(),
       States<2>},
      {"Torvane.Mechanics.TwoInertia",
       late,
       {{"tau"}, {"tauLoad", false}, {"tau2", false}},
       {{"JM", "kg.m2"},
        {"JL", "kg.m2"},
        {"KS", "N.m/rad"},
        {"KCV", "N.m.s/rad"},
        {"gear", "1", "1"},
        {"KVM", "N.m.s/rad", "0"},
        {"TCM", "N.m", "0"},
        {"TSM", "N.m", "0"},
        {"PSM", "rad", "1"},
        {"KVL", "N.m.s/rad", "0"},
        {"TCL", "N.m", "0"},
        {"TSL", "N.m", "0"},
        {"PSL", "rad", "1"}},
       {"vM", "pM", "vL", "pL", "aM", "aL", "tauShaft"},
       BlockCode::Of<TwoInertiaBlock>(),
       States<4>},
  };
}

}  // namespace torvane::loops
