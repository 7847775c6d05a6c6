#pragma once

#include <string>
#include <vector>

#include "core/instrument.h"

namespace torvane::test {

/// Instrument whose answers the test gives; writes what it is asked into a shared log.
class FakeInstrument : public Instrument {
 public:
  FakeInstrument(InstrumentKind kind, std::string name, std::vector<std::string>& log)
      : Instrument(kind, std::move(name)), log_(log) {}

  double NextTime() const override { return Requested; }
  bool Service(double t) override {
    ServicedAt.push_back(t);
    log_.push_back(Name() + " serviced");
    return static_cast<int>(ServicedAt.size()) != StopsAtService;
  }
  bool Busy() const override { return IsBusy; }
  double Excitation(double now) const override { return Gain * now; }
  void Restart() override { log_.push_back(Name() + " restarted"); }
  void Start() override { log_.push_back(Name() + " started"); }
  void Refresh() override { log_.push_back(Name() + " refreshed"); }

  void PrepareCapture() override { log_.push_back(Name() + " captured"); }
  void PrepareWideCapture() override { log_.push_back(Name() + " captured wide"); }

  double Requested = -1.0;
  int StopsAtService = 0;  ///< the service, counted from 1, that wants the run to stop
  bool IsBusy = false;
  double Gain = 0.0;
  std::vector<double> ServicedAt;

 private:
  std::vector<std::string>& log_;
};

}  // namespace torvane::test
