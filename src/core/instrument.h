#pragma once

#include <functional>
#include <string>

namespace torvane {

struct Record;
class RecordWriter;

enum class InstrumentKind { WaveGenerator, Meter, Scope, SweptSine, FftAnalyser };

/// What an instrument tells the window that shows it, when there is one.
class InstrumentView {
 public:
  virtual ~InstrumentView() = default;
  /// New data may be on the screen; sent ten times a second.
  virtual void Redraw() = 0;
  /// Settings were changed other than by this view (a file, an undo).
  virtual void SettingsChanged() = 0;
  /// The named constant has a new value.
  virtual void ConstantChanged(const std::string& /*name*/) {}
};

enum class WindowState { Normal, Minimised, Maximised };

/// Where an instrument's window stands in the workspace, in pixels. Sizes of 0 mean that the
/// window chooses for itself.
struct WindowPlacement {
  WindowState State = WindowState::Normal;
  int Height = 0;
  int Left = 0;
  int Top = 0;
  int Width = 0;

  bool operator==(const WindowPlacement&) const = default;
};

/// What the bench sees of an instrument. Engines derive from it; they own all their settings and
/// work without a window.
class Instrument {
 public:
  Instrument(InstrumentKind kind, std::string name);
  Instrument(const Instrument&) = delete;
  Instrument& operator=(const Instrument&) = delete;
  virtual ~Instrument() = default;

  InstrumentKind Kind() const { return kind_; }
  const std::string& Name() const { return name_; }

  /// The simulated time at which the instrument wants to be serviced next; negative for none.
  virtual double NextTime() const { return -1.0; }

  /// Processes the model's signals at the present time; false asks for the run to stop.
  virtual bool Service(double /*t*/) { return true; }

  /// Work is pending that must finish before the simulation may run on.
  virtual bool Busy() const { return false; }

  /// A measurement of the instrument's own is in progress.
  virtual bool Measuring() const { return false; }

  /// What the instrument adds to the model's command at the given bench time.
  virtual double Excitation(double /*now*/) const { return 0.0; }

  /// Run was pressed.
  virtual void Start() {}

  /// The 100 ms display refresh.
  virtual void Refresh();

  /// The named constant has a new value.
  virtual void ConstantChanged(const std::string& name);

  /// Writes the instrument's settings as records of a model file.
  virtual void SaveRecords(RecordWriter& /*writer*/) const {}

  /// Takes one record of a file that names this instrument. Reports what is wrong with it and keeps
  /// the setting then.
  virtual void LoadRecord(const Record& /*record*/) {}

  /// The file has been read: settings that had to wait for others are taken. Before a report about
  /// one, atLine is told the line that it stood in. Overriders call this one last.
  virtual void FinishLoading(const std::function<void(int line)>& atLine);

  void SetView(InstrumentView* view) { view_ = view; }
  InstrumentView* View() const { return view_; }

  WindowPlacement Placement;

 protected:
  void TellSettingsChanged();

 private:
  InstrumentKind kind_;
  std::string name_;
  InstrumentView* view_ = nullptr;
};

}  // namespace torvane
