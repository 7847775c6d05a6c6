#include "loops/blocks/sampled.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "core/bench.h"
#include "core/constant.h"
#include "library/d_controller.h"
#include "library/d_low_pass1.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "library/d_pid.h"

namespace torvane::loops {

namespace {

/// Holds what a sampled block of the library lives on: a clock with its period and gains that are
/// constants, on a bench that nobody sees. Its samples come from the loop's clock.
class Workshop {
 public:
  Constant& Gain(const char* name) {
    constexpr double Any = std::numeric_limits<double>::max();
    gains_.push_back(std::make_unique<Constant>(bench_, name, "", 0.0, -Any, Any));
    return *gains_.back();
  }
  const ZelDController* Clock() const { return &clock_; }

  void SetPeriod(double seconds) { numbers_.SetPeriod(seconds); }
  /// In the order in which they were made.
  void SetGain(std::size_t index, double value) {
    gains_[index]->Set(value);
    bench_.History().Clear();
  }

 private:
  ZelBenchTop bench_;
  ControllerClock numbers_;
  ZelDController clock_{bench_, 0.0, &numbers_};
  std::vector<std::unique_ptr<Constant>> gains_;
};

// What the one remembers goes over to the other, which is of its kind.
void HandOver(ZelDLibraryClass& from, ZelDLibraryClass& to) {
  Carried before;
  Carried after;
  from.Carry(before);
  to.Carry(after);
  for (std::size_t i = 0; i < after.Numbers().size(); ++i) {
    *after.Numbers()[i] = *before.Numbers()[i];
  }
}

template <class Filter>
class SampledFilter : public Block {
 public:
  void Output(const Moment& /*now*/) final { *y_ = filter_->Step(*u_); }
  void Reset() final { filter_->Reset(ResetKind::Everything); }
  void Carry(Carried& carried) final { filter_->Carry(carried); }

  void Prepare() final {
    workshop_.SetPeriod(DesignPeriod());
    SetParameters();
  }
  const char* Fault() const final {
    if (!(DesignPeriod() > 0.0)) return "coefficientPeriod must be above 0";
    return ValidParameters() ? nullptr : NegativeFilter;
  }
  const char* Doubt() const final {
    constexpr double Highest = 0.5;  // periods a sample
    return HighestFrequency() * DesignPeriod() > Highest
               ? "its frequency is beyond half the sample frequency, from where it counts back"
               : nullptr;
  }

 protected:
  template <class... Args>
  explicit SampledFilter(const BlockMaking& making, Args... args)
      : wiring_(making.Numbers),
        u_(wiring_.Input(0)),
        y_(wiring_.Output(0)),
        filter_(std::make_unique<Filter>(workshop_.Clock(), args...)) {}

  virtual void SetParameters() = 0;
  virtual bool ValidParameters() const = 0;
  /// Of what resonates.
  virtual double HighestFrequency() const { return 0.0; }

  Filter& TheFilter() { return *filter_; }
  /// For parameters that a filter takes only when it is made.
  template <class... Args>
  void Remake(Args... args) {
    auto made = std::make_unique<Filter>(workshop_.Clock(), args...);
    HandOver(*filter_, *made);
    filter_ = std::move(made);
  }

  const Wiring wiring_;

 private:
  // The last parameter but for the clock's own.
  double DesignPeriod() const { return wiring_.Parameter(wiring_.ParameterCount() - 1); }

  const double* u_;
  double* y_;
  Workshop workshop_;
  std::unique_ptr<Filter> filter_;
};

class DLowPass1Block final : public SampledFilter<ZelDLowPass1> {
 public:
  explicit DLowPass1Block(const BlockMaking& making) : SampledFilter(making, 0.0) {}

 private:
  void SetParameters() override { TheFilter().SetFrequency(wiring_.Parameter(0)); }
  bool ValidParameters() const override { return wiring_.NotNegative(0); }
};

template <class Filter>
class DSecondOrderBlock final : public SampledFilter<Filter> {
 public:
  explicit DSecondOrderBlock(const BlockMaking& making)
      : SampledFilter<Filter>(making, 0.0, 0.0, 0.0) {}

 private:
  void SetParameters() override {
    this->TheFilter().SetFrequency(this->wiring_.Parameter(0));
    this->TheFilter().SetDamping(this->wiring_.Parameter(1));
  }
  bool ValidParameters() const override { return this->wiring_.NotNegative(0, 1); }
  double HighestFrequency() const override { return this->wiring_.Parameter(0); }
};

class DTwoPoleTwoZeroBlock final : public SampledFilter<ZelDNotch> {
 public:
  explicit DTwoPoleTwoZeroBlock(const BlockMaking& making) : SampledFilter(making, 0.0, 0.0) {}

 private:
  void SetParameters() override {
    Remake(wiring_.Parameter(0), wiring_.Parameter(1), wiring_.Parameter(2), wiring_.Parameter(3),
           0.0);
  }
  bool ValidParameters() const override { return wiring_.NotNegative(0, 1, 2, 3); }
  double HighestFrequency() const override {
    return std::max(wiring_.Parameter(0), wiring_.Parameter(2));
  }
};

/// Inputs: command, measurement, feed-forward. Outputs: the controller's and its error.
template <class Controller>
class ControllerBlock : public Block {
 public:
  void Output(const Moment& /*now*/) final {
    *y_ = controller_->Update(*command_, *measured_, *feedForward_);
    *e_ = controller_->Error();
  }
  void Reset() final { controller_->Reset(ResetKind::Everything); }
  void Carry(Carried& carried) final { controller_->Carry(carried); }

  void Prepare() final {
    workshop_.SetPeriod(wiring_.Parameter(0));
    for (std::size_t i = 0; i < gains_; ++i) {
      workshop_.SetGain(i, wiring_.Parameter(FirstGain + i));
    }
    const double limit = wiring_.Parameter(1);
    const double windUp = wiring_.Parameter(2);
    if (controller_ && limit == limit_ && windUp == windUp_) return;
    limit_ = limit;
    windUp_ = windUp;
    std::unique_ptr<Controller> made = MakeController();
    if (controller_) HandOver(*controller_, *made);
    controller_ = std::move(made);
  }
  const char* Fault() const final {
    if (!(wiring_.Parameter(0) > 0.0)) return "samplePeriod must be above 0";
    return wiring_.NotNegative(1, 2) ? nullptr : "neither yMax nor windUp may be below 0";
  }

 protected:
  static constexpr std::size_t FirstGain = 3;

  explicit ControllerBlock(const BlockMaking& making)
      : wiring_(making.Numbers),
        gains_(wiring_.ParameterCount() - FirstGain),
        command_(wiring_.Input(0)),
        measured_(wiring_.Input(1)),
        feedForward_(wiring_.Input(2)),
        y_(wiring_.Output(0)),
        e_(wiring_.Output(1)) {}

  virtual std::unique_ptr<Controller> MakeController() = 0;

  const Wiring wiring_;
  Workshop workshop_;
  double limit_ = 0.0;
  double windUp_ = 0.0;

 private:
  const std::size_t gains_;
  const double* command_;
  const double* measured_;
  const double* feedForward_;
  double* y_;
  double* e_;
  std::unique_ptr<Controller> controller_;
};

class DPiBlock final : public ControllerBlock<ZelDPi> {
 public:
  explicit DPiBlock(const BlockMaking& making) : ControllerBlock(making) {}

 private:
  std::unique_ptr<ZelDPi> MakeController() override {
    return std::make_unique<ZelDPi>(workshop_.Clock(), &kVI_, &kVP_, limit_, windUp_);
  }

  Constant& kVP_ = workshop_.Gain("kVP");
  Constant& kVI_ = workshop_.Gain("kVI");
};

class DPiPlusBlock final : public ControllerBlock<ZelDPiPlus> {
 public:
  explicit DPiPlusBlock(const BlockMaking& making) : ControllerBlock(making) {}

 private:
  std::unique_ptr<ZelDPiPlus> MakeController() override {
    return std::make_unique<ZelDPiPlus>(workshop_.Clock(), &kVI_, &kVP_, &kVFR_, limit_, windUp_);
  }

  Constant& kVP_ = workshop_.Gain("kVP");
  Constant& kVI_ = workshop_.Gain("kVI");
  Constant& kVFR_ = workshop_.Gain("kVFR");
};

class DPidBlock final : public ControllerBlock<ZelDPid> {
 public:
  explicit DPidBlock(const BlockMaking& making) : ControllerBlock(making) {}

 private:
  std::unique_ptr<ZelDPid> MakeController() override {
    return std::make_unique<ZelDPid>(workshop_.Clock(), &kVI_, &kVP_, &kVD_, &kVFR_, &fD_, limit_,
                                     windUp_);
  }

  Constant& kVP_ = workshop_.Gain("kVP");
  Constant& kVI_ = workshop_.Gain("kVI");
  Constant& kVD_ = workshop_.Gain("kVD");
  Constant& kVFR_ = workshop_.Gain("kVFR");
  Constant& fD_ = workshop_.Gain("fD");
};

/// y = u of the sample before.
class UnitDelayBlock final : public Block {
 public:
  explicit UnitDelayBlock(const BlockMaking& making)
      : wiring_(making.Numbers), u_(wiring_.Input(0)), y_(wiring_.Output(0)) {}

  void Output(const Moment& /*now*/) override { *y_ = held_; }
  void Update(const Moment& /*now*/) override { held_ = *u_; }
  void Reset() override { held_ = 0.0; }
  void Carry(Carried& carried) override { carried.Number(held_); }

 private:
  const Wiring wiring_;
  const double* u_;
  double* y_;
  double held_ = 0.0;
};

/// From `delay` after each sample on, y is u as it was sampled. Between samples it looks at the
/// time at each evaluation, so it is no sampled block itself.
class HoldBlock final : public Block {
 public:
  explicit HoldBlock(const BlockMaking& making)
      : wiring_(making.Numbers),
        clock_(*making.Clock),
        u_(wiring_.Input(0)),
        y_(wiring_.Output(0)) {}

  void Prepare() override { delay_ = wiring_.Parameter(1); }
  const char* Fault() const override {
    const double delay = wiring_.Parameter(1);
    return delay >= 0.0 && delay < wiring_.Parameter(0)
               ? nullptr
               : "delay must not be below 0, and must be below samplePeriod";
  }
  void Output(const Moment& now) override {
    if (clock_.SampleDue()) {
      sampled_ = *u_;
      instant_ = now.Time + delay_;
    }
    if (now.Time >= instant_) *y_ = sampled_;
  }
  void Reset() override { sampled_ = instant_ = 0.0; }
  void Carry(Carried& carried) override {
    carried.Number(sampled_);
    carried.Keep(instant_);
  }

 private:
  const Wiring wiring_;
  const ControllerClock& clock_;
  const double* u_;
  double* y_;
  double delay_ = 0.0;
  double sampled_ = 0.0;
  double instant_ = 0.0;
};

std::vector<BlockParameter> Controlled(std::vector<BlockParameter> gains) {
  std::vector<BlockParameter> all{
      {"samplePeriod", "s"}, {"yMax", "", "20"}, {"windUp", "1", "1.2"}};
  all.insert(all.end(), gains.begin(), gains.end());
  return all;
}

}  // namespace

std::vector<BlockType> SampledBlockTypes() {
  constexpr auto sampled = BlockType::Timing::Sampled;
  const std::vector<BlockInput> in{{"u"}};
  const std::vector<BlockInput> compared{{"u"}, {"u_m"}, {"feedForward", false}};
  const BlockParameter period{"samplePeriod", "s"};
  const BlockParameter coefficients{"coefficientPeriod", "s", "samplePeriod"};
  const BlockParameter f{"f", "Hz"};
  const BlockParameter zeta{"zeta", "1", "0.707"};
  const BlockParameter kvp{"kVP"};
  const BlockParameter kvi{"kVI", "1/s"};
  return {
      {"Torvane.Discrete.LowPass1",
       sampled,
       in,
       {f, period, coefficients},
       {"y"},
       BlockCode::Of<DLowPass1Block>()},
      {"Torvane.Discrete.LowPass2",
       sampled,
       in,
       {f, zeta, period, coefficients},
       {"y"},
       BlockCode::Of<DSecondOrderBlock<ZelDLowPass2>>()},
      {"Torvane.Discrete.Notch",
       sampled,
       in,
       {f, zeta, period, coefficients},
       {"y"},
       BlockCode::Of<DSecondOrderBlock<ZelDNotch>>()},
      {"Torvane.Discrete.TwoPoleTwoZero",
       sampled,
       in,
       {{"fPole", "Hz"},
        {"zetaPole", "1"},
        {"fZero", "Hz"},
        {"zetaZero", "1"},
        period,
        coefficients},
       {"y"},
       BlockCode::Of<DTwoPoleTwoZeroBlock>()},
      {"Torvane.Discrete.PI",
       sampled,
       compared,
       Controlled({kvp, kvi}),
       {"y", "e"},
       BlockCode::Of<DPiBlock>()},
      {"Torvane.Discrete.PIPlus",
       sampled,
       compared,
       Controlled({kvp, kvi, {"kVFR", "%", "100"}}),
       {"y", "e"},
       BlockCode::Of<DPiPlusBlock>()},
      {"Torvane.Discrete.PID",
       sampled,
       compared,
       Controlled({kvp, kvi, {"kVD", "s", "0"}, {"kVFR", "1", "1"}, {"fD", "Hz", "2000"}}),
       {"y", "e"},
       BlockCode::Of<DPidBlock>()},
      {"Torvane.Discrete.UnitDelay",
       sampled,
       in,
       {period},
       {"y"},
       BlockCode::Of<UnitDelayBlock>(),
       nullptr,
       Never},
      {"Torvane.Discrete.ZeroOrderHold",
       BlockType::Timing::Now,
       in,
       {period, {"delay", "s", "0"}},
       {"y"},
       BlockCode::Of<HoldBlock>()},
  };
}

}  // namespace torvane::loops
