#pragma once

#include <QWidget>

#include "core/instrument.h"

namespace torvane {

/// A view on one instrument, shown in a sub-window of the workspace. It registers itself with the
/// instrument and must not outlive it.
class InstrumentPane : public QWidget, public InstrumentView {
 public:
  explicit InstrumentPane(Instrument& instrument) : instrument_(instrument) {
    instrument.SetView(this);
  }
  ~InstrumentPane() override { instrument_.SetView(nullptr); }

  Instrument& Engine() const { return instrument_; }

  /// New data may be there to paint; called at most once a frame while the model runs.
  virtual void ShowFrame() {}

 private:
  Instrument& instrument_;
};

}  // namespace torvane
