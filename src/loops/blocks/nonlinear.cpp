#include "loops/blocks/nonlinear.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/numeric.h"
#include "library/friction.h"

namespace torvane::loops {

namespace {

class OneToOne : public Block {
 protected:
  explicit OneToOne(const BlockMaking& making)
      : wiring_(making.Numbers), u_(wiring_.Input(0)), y_(wiring_.Output(0)) {}

  const Wiring wiring_;
  const double* u_;
  double* y_;
};

/// Has an upper and a lower limit, in this order.
class LimitsBlock : public OneToOne {
 public:
  void Prepare() final {
    max_ = wiring_.Parameter(0);
    min_ = wiring_.Parameter(1);
  }
  const char* Fault() const final {
    return wiring_.Parameter(1) <= wiring_.Parameter(0) ? nullptr : wrong_;
  }

 protected:
  /// `wrong` is what is told of limits the wrong way round.
  LimitsBlock(const BlockMaking& making, const char* wrong) : OneToOne(making), wrong_(wrong) {}

  double max_ = 0.0;
  double min_ = 0.0;

 private:
  const char* wrong_;
};

/// y = u between yMin and yMax.
class LimiterBlock final : public LimitsBlock {
 public:
  explicit LimiterBlock(const BlockMaking& making) : LimitsBlock(making, "yMin is above yMax") {}

  void Output(const Moment& /*now*/) override {
    const double u = *u_;
    *y_ = u > max_ ? max_ : u < min_ ? min_ : u;
  }
};

/// y = 0 between uMin and uMax, and what u is beyond them.
class DeadZoneBlock final : public LimitsBlock {
 public:
  explicit DeadZoneBlock(const BlockMaking& making) : LimitsBlock(making, "uMin is above uMax") {}

  void Output(const Moment& /*now*/) override {
    const double u = *u_;
    *y_ = u > max_ ? u - max_ : u < min_ ? u - min_ : 0.0;
  }
};

/// y = u as a multiple of step: the nearest, halves upwards, or the one below.
class QuantiserBlock final : public OneToOne {
 public:
  explicit QuantiserBlock(const BlockMaking& making) : OneToOne(making) {}

  void Prepare() override {
    step_ = wiring_.Parameter(0);
    down_ = wiring_.Parameter(1) != 0.0;
  }
  const char* Fault() const override {
    return wiring_.NotNegative(0) ? nullptr : "step must not be below 0; at 0 nothing is rounded";
  }
  void Output(const Moment& /*now*/) override {
    *y_ = down_ ? FloorToStep(*u_, step_) : RoundToStep(*u_, step_);
  }

 private:
  double step_ = 0.0;
  bool down_ = false;
};

/// y follows u with the time constant Td, at least a step, and at most as fast as rising and
/// falling:
///
///     dy/dt = (u - y) / Td, limited to falling ... rising
class SlewRateLimiterBlock final : public OneToOne {
 public:
  explicit SlewRateLimiterBlock(const BlockMaking& making)
      : OneToOne(making), step_(making.Step), state_(wiring_.States()), slope_(wiring_.Slopes()) {}

  void Prepare() override {
    rising_ = wiring_.Parameter(0);
    falling_ = wiring_.Parameter(1);
    timeConstant_ = std::max(wiring_.Parameter(2), step_);
  }
  const char* Fault() const override {
    if (!(wiring_.Parameter(0) > 0.0) || !(wiring_.Parameter(1) < 0.0)) {
      return "rising must be above 0 and falling below 0";
    }
    return wiring_.Parameter(2) > 0.0 ? nullptr : "Td must be above 0";
  }
  void Output(const Moment& /*now*/) override { *y_ = *state_; }
  void Update(const Moment& /*now*/) override {
    const double wanted = (*u_ - *state_) / timeConstant_;
    *slope_ = wanted > rising_ ? rising_ : wanted < falling_ ? falling_ : wanted;
  }

 private:
  const double step_;
  const double* state_;
  double* slope_;
  double rising_ = 1.0;
  double falling_ = -1.0;
  double timeConstant_ = 1.0;
};

/// y on straight lines between the points (x, y) of the table, and level beyond its ends.
class TableBlock final : public OneToOne {
 public:
  explicit TableBlock(const BlockMaking& making) : OneToOne(making) {}

  void Prepare() override {
    points_.resize(wiring_.ListSize(0) / 2);
    const std::vector<double> numbers = wiring_.List(0);
    for (std::size_t i = 0; i < points_.size(); ++i) {
      points_[i] = {numbers[2 * i], numbers[2 * i + 1]};
    }
  }
  const char* Fault() const override {
    const std::vector<double> numbers = wiring_.List(0);
    for (std::size_t i = 2; i < numbers.size(); i += 2) {
      if (!(numbers[i] > numbers[i - 2])) return "the first column of the table must rise";
    }
    return nullptr;
  }
  void Output(const Moment& /*now*/) override {
    const double u = *u_;
    const auto above = std::upper_bound(points_.begin(), points_.end(), u,
                                        [](double x, const Point& point) { return x < point.X; });
    if (above == points_.begin()) {
      *y_ = above->Y;
    } else if (above == points_.end()) {
      *y_ = points_.back().Y;
    } else {
      const Point& below = *(above - 1);
      *y_ = below.Y + (u - below.X) * (above->Y - below.Y) / (above->X - below.X);
    }
  }

 private:
  struct Point {
    double X;
    double Y;
  };
  std::vector<Point> points_;
};

/// y = u of T ago, on straight lines between the solver's steps; a T of less than a step counts as
/// one. Before time 0, u was `start`.
class DeadTimeBlock final : public OneToOne {
 public:
  explicit DeadTimeBlock(const BlockMaking& making) : OneToOne(making), step_(making.Step) {}

  const char* Fault() const override {
    const double steps = wiring_.Parameter(0) / step_;
    if (!(steps >= 0.0)) return "T must not be below 0";
    return steps <= MostSteps ? nullptr : "T is longer than 1000000 steps of the solver";
  }

  void Prepare() override {
    back_ = std::max(wiring_.Parameter(0) / step_, 1.0);
    start_ = wiring_.Parameter(1);
    needed_ = static_cast<std::size_t>(back_) + 2;
    if (needed_ > past_.size()) Grow();
    if (!begun_) Forget();
  }

  std::size_t Remembered() const override {
    return static_cast<std::size_t>(wiring_.Parameter(0) / step_) + 2;
  }

  void Output(const Moment& now) override {
    // Of the steps' beginnings, the last one recorded is this step's, but in its first evaluation.
    const double into = (now.Time - now.StepStart) / step_;
    const double back = std::max(back_ - into - (recorded_ == now.StepStart ? 0.0 : 1.0), 0.0);
    const auto whole = static_cast<std::size_t>(back);
    const double part = back - static_cast<double>(whole);
    const double newer = Past(whole);
    *y_ = part == 0.0 ? newer : newer + part * (Past(whole + 1) - newer);
  }

  void Update(const Moment& now) override {
    if (!now.BeginsStep()) return;
    if (recorded_ != now.Time) Advance();
    past_[last_] = *u_;
    recorded_ = now.Time;
    begun_ = true;
  }

  void Reset() override {
    Forget();
    begun_ = false;
  }

  void Carry(Carried& carried) override {
    std::rotate(past_.begin(), past_.begin() + static_cast<std::ptrdiff_t>(last_) + 1, past_.end());
    past_.erase(past_.begin(), past_.end() - static_cast<std::ptrdiff_t>(needed_));
    last_ = needed_ - 1;
    inPlace_ = true;
    for (double& u : past_) carried.Number(u);
    carried.Keep(recorded_);
    carried.Period(step_);
  }

 private:
  static constexpr double MostSteps = 1e6;

  double Past(std::size_t ago) const {
    ago = std::min(ago, past_.size() - 1);
    return past_[last_ >= ago ? last_ - ago : last_ + past_.size() - ago];
  }

  void Advance() {
    if (inPlace_) {
      std::copy(past_.begin() + 1, past_.end(), past_.begin());
    } else {
      last_ = last_ + 1 == past_.size() ? 0 : last_ + 1;
    }
  }

  // What was recorded stays; of u before that nothing is known any more, but how it was then.
  void Grow() {
    const double before = begun_ ? Past(past_.size() - 1) : start_;
    std::vector<double> grown(needed_, before);
    for (std::size_t ago = 0; ago < past_.size(); ++ago) grown[needed_ - 1 - ago] = Past(ago);
    past_ = std::move(grown);
    last_ = needed_ - 1;
  }

  void Forget() {
    std::fill(past_.begin(), past_.end(), start_);
    recorded_ = -1.0;
  }

  const double step_;
  double back_ = 1.0;  ///< T in steps
  double start_ = 0.0;
  std::size_t needed_ = 2;    ///< of past_
  std::vector<double> past_;  ///< u at the beginnings of steps, a ring
  std::size_t last_ = 0;
  double recorded_ = -1.0;  ///< the time of the last of them
  bool begun_ = false;
  bool inPlace_ = false;  ///< no ring: u of each time ago has a place of its own
};

/// y = u of the evaluation before, a fraction of a step ago.
class MemoryBlock final : public OneToOne {
 public:
  explicit MemoryBlock(const BlockMaking& making) : OneToOne(making) {}

  void Update(const Moment& /*now*/) override { *y_ = *u_; }
};

/// Coulomb friction with a static region, of a position and a velocity.
class FrictionBlock final : public Block {
 public:
  explicit FrictionBlock(const BlockMaking& making)
      : wiring_(making.Numbers),
        position_(wiring_.Input(0)),
        velocity_(wiring_.Input(1)),
        torque_(wiring_.Output(0)) {}

  const char* Fault() const override {
    if (!wiring_.NotNegative(0, 1)) return "TC and TS must not be below 0";
    return wiring_.Parameter(2) > 0.0 ? nullptr : "PS must be above 0";
  }
  void Prepare() override {
    friction_.SetSettings({wiring_.Parameter(0), wiring_.Parameter(1), wiring_.Parameter(2)});
  }
  void Output(const Moment& /*now*/) override {
    *torque_ = friction_.Friction(*position_, *velocity_);
  }
  void Reset() override { friction_.Reset(ResetKind::Everything); }
  void Carry(Carried& carried) override { carried.Keep(friction_); }

 private:
  const Wiring wiring_;
  const double* position_;
  const double* velocity_;
  double* torque_;
  ZelFricCalc friction_{FrictionSettings{}};
};

int OneState(const Placing& /*placing*/) {
  return 1;
}

const char* WrongTable(const Placing& placing) {
  return placing.Parameters[0].empty() || placing.RowLengths[0] != 2
             ? "a table is rows {x, y}, at least one"
             : nullptr;
}

}  // namespace

std::vector<BlockType> NonlinearBlockTypes() {
  constexpr auto now = BlockType::Timing::Now;
  const std::vector<BlockInput> in{{"u"}};
  using enum BlockParameter::Kind;
  return {
      {"Torvane.Nonlinear.Limiter",
       now,
       in,
       {{"yMax"}, {"yMin", "", "-yMax"}},
       {"y"},
       BlockCode::Of<LimiterBlock>()},
      {"Torvane.Nonlinear.DeadZone",
       now,
       in,
       {{"uMax"}, {"uMin", "", "-uMax"}},
       {"y"},
       BlockCode::Of<DeadZoneBlock>()},
      {"Torvane.Nonlinear.Quantiser",
       now,
       in,
       {{"step"}, {"down", "", "false", Truth}},
       {"y"},
       BlockCode::Of<QuantiserBlock>()},
      {"Torvane.Nonlinear.SlewRateLimiter",
       now,
       in,
       {{"rising"}, {"falling", "", "-rising"}, {"Td", "s", "0.001"}},
       {"y"},
       BlockCode::Of<SlewRateLimiterBlock>(),
       OneState,
       Never},
      {"Torvane.Nonlinear.Table",
       now,
       in,
       {{"table", "", "", Rows}},
       {"y"},
       BlockCode::Of<TableBlock>(),
       nullptr,
       nullptr,
       WrongTable},
      {"Torvane.Continuous.DeadTime",
       now,
       in,
       {{"T", "s"}, {"start", "", "0"}},
       {"y"},
       BlockCode::Of<DeadTimeBlock>(),
       nullptr,
       Never},
      {"Torvane.Continuous.Memory",
       BlockType::Timing::Late,
       in,
       {},
       {"y"},
       BlockCode::Of<MemoryBlock>(),
       nullptr,
       nullptr,
       nullptr,
       true},
      {"Torvane.Mechanics.Friction",
       now,
       {{"p"}, {"v"}},
       {{"TC", "N.m"}, {"TS", "N.m"}, {"PS", "rad"}},
       {"tau"},
       BlockCode::Of<FrictionBlock>()},
  };
}

}  // namespace torvane::loops
