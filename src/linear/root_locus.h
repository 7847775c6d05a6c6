#pragma once

#include <complex>
#include <string>
#include <vector>

#include "linear/model_theory.h"

namespace torvane {

class Constant;

/// How a model's poles move with one of its constants, a decade to either side of where it stands
/// as far as its limits go; from 0 and below, as far as the limit. The values are found one by one,
/// from the present one outwards, so that its owner can do others in between.
class RootLocus {
 public:
  using Complex = std::complex<double>;
  static constexpr int Values = 101;

  /// What a constant can be moved over.
  static bool CanVary(const Constant& constant);

  /// The model, and what it is the theory of, must outlive this.
  RootLocus(const ModelTheory& model, const Constant& constant);

  const std::string& Name() const { return name_; }
  double From() const { return values_.front(); }
  double To() const { return values_.back(); }

  /// Nothing else has been set otherwise since; and the constant stands within the range.
  bool IsCurrent() const;
  bool Done() const { return found_ == values_.size(); }
  /// Finds the poles of one more value; none where the model has no linear model.
  void Go();

  /// The way of each pole over the values that were found, by rising value; where their number
  /// changes ways end and others begin.
  std::vector<std::vector<Complex>> Ways() const;
  /// Lines of the value, real and imaginary part, under their captions.
  std::string Csv() const;

 private:
  const ModelTheory& model_;
  const Constant& constant_;
  std::string name_;
  std::string setUp_;  // of everything else
  std::vector<double> values_;
  std::vector<std::vector<Complex>> poles_;
  std::vector<std::size_t> order_;
  std::size_t found_ = 0;
};

}  // namespace torvane
