#pragma once

#include <QWidget>

#include "core/instrument.h"

namespace torvane {

struct TraceLook;

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

  /// Whether the simulation runs from now on; at first it does not.
  virtual void SetRunning(bool /*running*/) {}

  /// The workspace has so much room for all panes.
  virtual void SetRoom(const QSize& /*workspace*/) {}

  /// How traces are told apart from now on.
  virtual void SetLook(const TraceLook& /*look*/) {}

  /// Whether the pane is on the workspace as long as the user has not said so.
  enum class AtFirst { Shown, ShownWithRoom, Hidden };
  virtual AtFirst ShownAtFirst() const { return AtFirst::Shown; }

  /// What a pane that folds some of its controls where room is short needs with and without them;
  /// empty of one that folds none.
  virtual QSize UnfoldedSize() const { return {}; }
  virtual QSize FoldedSize() const { return {}; }

  /// What the pane needs where it can be flat: from this width on no more than this height.
  virtual QSize FlatSize() const { return {}; }

  /// A model file has been read, to its end.
  virtual void FileLoaded() {}

  /// The user sees the pane on the workspace, or has hidden it while its engine goes on. One that
  /// yields its place for a while is not told.
  virtual void ShownChanged(bool /*shown*/) {}

 private:
  Instrument& instrument_;
};

}  // namespace torvane
