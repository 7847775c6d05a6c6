#include "loops/blocks/linear.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "loops/blocks/linear_system.h"

namespace torvane::loops {

namespace {

/// How a linear block is written down.
struct TransferFunction {
  static constexpr const char* Wrong = "a must not begin with 0";

  static LinearSystem From(const Wiring& wiring) {
    return FromTransferFunction(wiring.List(0), wiring.List(1));
  }
  static const char* Fault(const Wiring& wiring) {
    return wiring.List(1).front() == 0.0 ? Wrong : nullptr;
  }
  static int Order(const Placing& placing) {
    return static_cast<int>(placing.Parameters[1].size()) - 1;
  }
  static bool Through(const Placing& placing) {
    return placing.Parameters[0].size() == placing.Parameters[1].size();
  }
  static const char* WrongSizes(const Placing& placing) {
    if (placing.Parameters[0].empty() || placing.Parameters[1].empty()) {
      return "b and a need a coefficient each";
    }
    return placing.Parameters[0].size() > placing.Parameters[1].size()
               ? "b has more coefficients than a: no system can differentiate like that"
               : nullptr;
  }
};

struct StateSpace {
  static LinearSystem From(const Wiring& wiring) {
    return {wiring.List(0), wiring.List(1), wiring.List(2), wiring.Parameter(3)};
  }
  static const char* Fault(const Wiring& /*wiring*/) { return nullptr; }
  static int Order(const Placing& placing) {
    return static_cast<int>(placing.Parameters[1].size());
  }
  // What D will be nobody knows; only its absence is sure.
  static bool Through(const Placing& placing) { return placing.Given[3]; }
  static const char* WrongSizes(const Placing& placing) {
    const std::size_t order = placing.Parameters[1].size();
    const bool square = placing.Parameters[0].size() == order * order &&
                        (order == 0 || placing.RowLengths[0] == static_cast<int>(order));
    return square && placing.Parameters[2].size() == order
               ? nullptr
               : "A needs as many rows and columns as B and C have items";
  }
};

struct ZerosAndPoles {
  static LinearSystem From(const Wiring& wiring) {
    std::vector<double> b = FromRoots(wiring.List(0));
    for (double& coefficient : b) coefficient *= wiring.Parameter(2);
    return FromTransferFunction(std::move(b), FromRoots(wiring.List(1)));
  }
  static const char* Fault(const Wiring& wiring) {
    const auto finite = [](double coefficient) { return std::isfinite(coefficient); };
    for (const std::size_t list : {0U, 1U}) {
      const std::vector<double> roots = wiring.List(list);
      if (!ArePaired(roots)) {
        return "a zero or pole that is not real needs its conjugate in another row";
      }
      const std::vector<double> polynomial = FromRoots(roots);
      if (!std::all_of(polynomial.begin(), polynomial.end(), finite)) {
        return "the product of its zeros or poles is beyond any number";
      }
    }
    return nullptr;
  }
  static int Order(const Placing& placing) {
    return static_cast<int>(placing.Parameters[1].size()) / 2;
  }
  static bool Through(const Placing& placing) {
    return placing.Parameters[0].size() == placing.Parameters[1].size();
  }
  static const char* WrongSizes(const Placing& placing) {
    for (const std::size_t list : {0U, 1U}) {
      if (!placing.Parameters[list].empty() && placing.RowLengths[list] != 2) {
        return "each zero and each pole is a row {real, imaginary}";
      }
    }
    return placing.Parameters[0].size() > placing.Parameters[1].size()
               ? "there are more zeros than poles: no system can differentiate like that"
               : nullptr;
  }
};

template <class Form>
class LinearBlock : public Block {
 public:
  void Prepare() override { system_ = Form::From(wiring_); }
  const char* Fault() const final { return Form::Fault(wiring_); }

 protected:
  explicit LinearBlock(const BlockMaking& making)
      : wiring_(making.Numbers), u_(making.Numbers.Input(0)), y_(making.Numbers.Output(0)) {}

  const Wiring wiring_;
  const double* u_;
  double* y_;
  LinearSystem system_;
};

template <class Form>
class ContinuousLinear final : public LinearBlock<Form> {
 public:
  explicit ContinuousLinear(const BlockMaking& making)
      : LinearBlock<Form>(making),
        states_(making.Numbers.States()),
        slopes_(making.Numbers.Slopes()) {}

  void Output(const Moment& /*now*/) override {
    *this->y_ = this->system_.Output(states_, *this->u_);
  }
  void Update(const Moment& /*now*/) override { this->system_.Move(states_, *this->u_, slopes_); }

 private:
  const double* states_;
  double* slopes_;
};

template <class Form>
class SampledLinear final : public LinearBlock<Form> {
 public:
  explicit SampledLinear(const BlockMaking& making) : LinearBlock<Form>(making) {}

  void Prepare() override {
    LinearBlock<Form>::Prepare();
    x_.resize(this->system_.Order());
    next_.resize(x_.size());
  }

  void Output(const Moment& /*now*/) override {
    *this->y_ = this->system_.Output(x_.data(), *this->u_);
  }
  void Update(const Moment& /*now*/) override {
    this->system_.Move(x_.data(), *this->u_, next_.data());
    std::copy(next_.begin(), next_.end(), x_.begin());
  }
  void Reset() override { std::fill(x_.begin(), x_.end(), 0.0); }
  void Carry(Carried& carried) override {
    for (double& x : x_) carried.Number(x);
  }

 private:
  std::vector<double> x_;
  std::vector<double> next_;
};

template <class Form>
void AddType(std::vector<BlockType>& types, std::string_view continuous, std::string_view sampled,
             const std::vector<BlockParameter>& parameters) {
  types.push_back({continuous,
                   BlockType::Timing::Now,
                   {{"u"}},
                   parameters,
                   {"y"},
                   BlockCode::Of<ContinuousLinear<Form>>(),
                   Form::Order,
                   Form::Through,
                   Form::WrongSizes});
  std::vector<BlockParameter> withPeriod = parameters;
  withPeriod.push_back({"samplePeriod", "s"});
  types.push_back({sampled,
                   BlockType::Timing::Sampled,
                   {{"u"}},
                   withPeriod,
                   {"y"},
                   BlockCode::Of<SampledLinear<Form>>(),
                   Form::Order,
                   Form::Through,
                   Form::WrongSizes});
}

}  // namespace

std::vector<BlockType> LinearBlockTypes() {
  using enum BlockParameter::Kind;
  std::vector<BlockType> types;
  AddType<TransferFunction>(types, "Torvane.Continuous.TransferFunction",
                            "Torvane.Discrete.TransferFunction",
                            {{"b", "", "", List}, {"a", "", "", List}});
  AddType<StateSpace>(
      types, "Torvane.Continuous.StateSpace", "Torvane.Discrete.StateSpace",
      {{"A", "", "", Rows}, {"B", "", "", List}, {"C", "", "", List}, {"D", "", "0", Number}});
  AddType<ZerosAndPoles>(
      types, "Torvane.Continuous.ZerosAndPoles", "Torvane.Discrete.ZerosAndPoles",
      {{"zeros", "", "{}", Rows}, {"poles", "", "", Rows}, {"k", "", "1", Number}});
  return types;
}

}  // namespace torvane::loops
