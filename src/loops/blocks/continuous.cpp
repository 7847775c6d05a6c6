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
  const char* Fault() const override { return wiring_.NotNegative(0) ? nullptr : NegativeFilter; }
};

template <class Filter>
class SecondOrderBlock final : public FilterBlock<SecondOrderBlock<Filter>, Filter> {
 public:
  explicit SecondOrderBlock(const BlockMaking& making)
      : FilterBlock<SecondOrderBlock, Filter>(making.Numbers, Filter(0.0, 0.0)) {}

  void Prepare() override {
    this->library_.SetFrequency(this->wiring_.Parameter(0));
    this->library_.SetDamping(this->wiring_.Parameter(1));
  }
  const char* Fault() const override {
    return this->wiring_.NotNegative(0, 1) ? nullptr : NegativeFilter;
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
  const char* Fault() const override {
    return wiring_.NotNegative(0, 1, 2, 3) ? nullptr : NegativeFilter;
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
      if (!wiring_.NotNegative(i)) return "no parameter may be below 0";
    }
    if (wiring_.Parameter(4) == 0.0) return "gear must be above 0";
    if (wiring_.Parameter(8) == 0.0 || wiring_.Parameter(12) == 0.0) {
      return "PSM and PSL must be above 0";
    }
    return nullptr;
  }

  void Prepare() override {
    const auto p = [this](std::size_t i) { return wiring_.Parameter(i); };
    library_.SetSettings({.JM = p(0),
                          .JL = p(1),
                          .KS = p(2),
                          .KCV = p(3),
                          .Gear = p(4),
                          .KVM = p(5),
                          .MotorFriction = {p(6), p(7), p(8)},
                          .KVL = p(9),
                          .LoadFriction = {p(10), p(11), p(12)}});
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
       BlockCode::Of<SecondOrderBlock<LowPass2>>(),
       States<2>},
      {"Torvane.Continuous.Notch",
       late,
       {{"u"}},
       {{"f", "Hz"}, {"zeta", "1", "0.707"}},
       {"y"},
       BlockCode::Of<SecondOrderBlock<Notch>>(),
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
