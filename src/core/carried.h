#pragma once

#include <cstddef>
#include <span>
#include <type_traits>
#include <vector>

namespace torvane {

/// What a model carries on from one step to the next, as those who hold it list it: enough to put a
/// model back to where it was, and to find out how it goes on from a little beside.
class Carried {
 public:
  /// A number that the loop computes with.
  void Number(double& number) {
    numbers_.push_back(&number);
    Keep(number);
  }

  /// What steers the loop without being a part of its sums: clocks, flags, instants.
  template <class T>
  void Keep(T& what) {
    static_assert(std::is_trivially_copyable_v<T>);
    kept_.push_back(std::as_writable_bytes(std::span(&what, 1)));
  }

  /// The loop samples every so many seconds.
  void Period(double seconds) { periods_.push_back(seconds); }

  const std::vector<double*>& Numbers() const { return numbers_; }
  const std::vector<std::span<std::byte>>& Kept() const { return kept_; }
  const std::vector<double>& Periods() const { return periods_; }

 private:
  std::vector<double*> numbers_;
  std::vector<std::span<std::byte>> kept_;
  std::vector<double> periods_;
};

/// A block, clock or model that carries on more than states and signals.
class Carrier {
 public:
  virtual ~Carrier() = default;

  /// Lists all of that.
  virtual void Carry(Carried& carried) = 0;

  /// A state was moved from outside: outputs that mirror states follow them.
  virtual void FollowStates() {}
};

}  // namespace torvane
