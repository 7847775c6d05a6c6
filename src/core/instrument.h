#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "core/instrument_kind.h"
#include "core/placement.h"
#include "core/sample_tape.h"
#include "core/undo.h"

namespace torvane {

struct Record;
class RecordWriter;

/// What an instrument tells the window that shows it, when there is one.
class InstrumentView {
 public:
  virtual ~InstrumentView() = default;
  /// New data may be on the screen; sent ten times a second.
  virtual void Redraw() = 0;
  /// Settings have changed, by whatever hand: the user's, a file's, an undo's.
  virtual void SettingsChanged() = 0;
};

/// The name that the number-th of several instruments of one name has, from 2.
inline std::string NumberedName(const std::string& name, int number) {
  return name + " #" + std::to_string(number);
}

/// What the bench sees of an instrument. Engines derive from it; they own all their settings and
/// work without a window.
///
/// Every setter makes its change through Change, which records it for undo and tells the view.
class Instrument : public Undoable {
 public:
  Instrument(InstrumentKind kind, std::string name);
  Instrument(const Instrument&) = delete;
  Instrument& operator=(const Instrument&) = delete;
  ~Instrument() override = default;

  InstrumentKind Kind() const { return kind_; }
  const std::string& Name() const { return name_; }

  /// The simulated time at which the instrument wants to be serviced next; negative for none.
  virtual double NextTime() const { return -1.0; }

  /// Processes the model's signals at the present time; false asks for the run to stop.
  virtual bool Service(double /*t*/) { return true; }

  // Samples may be taken on a tape within a run and read after it, where that changes nothing that
  // anybody sees. An instrument that takes part does with a row what Service does at its time.

  /// A run begins, with a tape: the next sample. NextTime at once, unless overridden. An instrument
  /// that asks for no time is not told of the others' samples.
  virtual NextSample BeginTape(const SampleTape& /*tape*/) { return {NextTime(), true}; }
  /// The sample that it awaited is on the tape, taken at t: the one after it. What the model is to
  /// feel from t on has to be done here.
  virtual NextSample AwaitOnTape(double /*t*/) { return {}; }
  /// The run is done: the rows of the tape that the instrument awaited. It is
  /// told of a tape without any, too: time has gone on.
  virtual void ReadTape(const SampleTape& /*tape*/, std::span<const int> /*rows*/) {}
  /// The run is undone, and with it what AwaitOnTape did.
  virtual void DropTape() {}

  /// Work is pending that must finish before the simulation may run on.
  virtual bool Busy() const { return false; }

  /// A measurement of the instrument's own is in progress.
  virtual bool Measuring() const { return false; }

  /// Whether Excitation can be anything but 0; it changes between runs only.
  virtual bool Excites() const { return true; }

  /// What the instrument adds to the model's command at the given bench time.
  virtual double Excitation(double /*now*/) const { return 0.0; }

  /// What the instrument feeds into the model at this time is beyond the largest number.
  virtual bool OverflowsAt(double /*t*/) const { return false; }

  /// Run was pressed.
  virtual void Start() {}

  /// The model starts anew after an overflow: nothing that was measured before goes on.
  virtual void Restart() {}

  /// What instruments of this kind share in a thread is the instrument's own from now on, beginning
  /// with nothing.
  virtual void KeepOwnMemory() {}

  /// The 100 ms display refresh.
  virtual void Refresh();

  /// A picture of the screen, or of a wide screen, is to be taken; the first is also told when the
  /// model has become the current one.
  virtual void PrepareCapture() {}
  virtual void PrepareWideCapture() {}

  /// Writes the instrument's settings as records of a model file.
  virtual void SaveRecords(RecordWriter& /*writer*/) const {}

  /// Takes one record of a file that names this instrument. Reports what is wrong with it and keeps
  /// the setting then.
  virtual void LoadRecord(const Record& /*record*/) {}

  /// The settings that can be undone, as records: those of a file and, where an instrument has
  /// settings that no file keeps, those too. LoadState takes one of these records.
  virtual void SaveState(RecordWriter& writer) const { SaveRecords(writer); }
  virtual void LoadState(const Record& record) { LoadRecord(record); }

  /// A file is going to be read.
  void BeginLoading();

  /// The file has been read: settings that had to wait for others are taken. Before a report about
  /// one, atLine is told the line that it stood in. Overriders call this one last.
  virtual void FinishLoading(const std::function<void(int line)>& atLine);

  void Undo(const UndoEntry& entry) override;
  void Redo(const UndoEntry& entry) override;
  Merged Merge(UndoEntry& earlier, const UndoEntry& later) const override;

  /// The history that changes are recorded in; without one they are not.
  void SetHistory(ZelUndo* history) { history_ = history; }

  void SetView(InstrumentView* view) { view_ = view; }
  InstrumentView* View() const { return view_; }

  WindowPlacement Placement;

 protected:
  /// Makes a change of settings. When it shows in the state's records it is recorded for undo,
  /// under the caption that stands for it afterwards ("Frequency = 20"), and the view is told. A
  /// change within a change is part of it.
  void Change(const std::function<void()>& change, const std::function<std::string()>& caption);

  void TellSettingsChanged();

 private:
  std::string StateText() const;
  void Restore(const std::string& records);

  InstrumentKind kind_;
  std::string name_;
  InstrumentView* view_ = nullptr;
  ZelUndo* history_ = nullptr;
  bool changing_ = false;
  std::optional<std::string> beforeLoading_;
};

}  // namespace torvane
