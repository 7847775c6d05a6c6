#pragma once

namespace torvane {

/// Whether a signal that follows a sine stands at a limit: at its greatest or least value for far
/// longer than at any other. One that is held or quantised stays no more than five times as long at
/// its turning points as beside them.
class LimitWatch {
 public:
  void See(double value) {
    if (run_ > 0 && value == last_) {
      ++run_;
      return;
    }
    EndRun();
    last_ = value;
    run_ = 1;
  }

  bool AtLimit() const {
    LimitWatch whole = *this;
    whole.EndRun();
    const bool moves = whole.greatest_.Value > whole.least_.Value;
    const auto far = [&](const Extreme& extreme) {
      return extreme.Longest > FarLonger * (whole.between_ > 1 ? whole.between_ : 1);
    };
    return moves && (far(whole.greatest_) || far(whole.least_));
  }

 private:
  static constexpr int FarLonger = 8;

  struct Extreme {
    double Value = 0.0;
    int Longest = 0;
  };

  // A run at what was an extreme until now lies between them.
  void Take(Extreme& extreme, bool beyond) {
    if (beyond) {
      between_ = extreme.Longest > between_ ? extreme.Longest : between_;
      extreme = {last_, run_};
    } else if (last_ == extreme.Value) {
      extreme.Longest = run_ > extreme.Longest ? run_ : extreme.Longest;
    }
  }

  void EndRun() {
    if (run_ == 0) return;
    if (greatest_.Longest == 0) {
      greatest_ = least_ = {last_, run_};
      return;
    }
    if (last_ < greatest_.Value && last_ > least_.Value) {
      if (run_ > between_) between_ = run_;
      return;
    }
    Take(greatest_, last_ > greatest_.Value);
    Take(least_, last_ < least_.Value);
  }

  Extreme greatest_;
  Extreme least_;
  int between_ = 0;
  double last_ = 0.0;
  int run_ = 0;
};

}  // namespace torvane
