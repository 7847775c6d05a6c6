#pragma once

#include <array>
#include <memory>
#include <vector>

#include "instruments/scope/scope.h"
#include "ui/panes/instrument_pane.h"

class QAbstractButton;
class QComboBox;
class QMainWindow;

namespace torvane {

class ConstantsGrid;
class EditBinding;
class TriggerControls;
class TriggerWord;
class ConstantsSplitter;
class CursorsWindow;
class MathWindow;
class ReadOutWindow;

namespace Ui {
class ScopeWindow;
}

/// The window of a scope: its screen, the scales of its channels, its trigger, and the model's
/// constants.
class ScopeWindow : public InstrumentPane {
  Q_OBJECT

 public:
  /// Scope and bench must outlive the window.
  ScopeWindow(ZelScope& scope, ZelBenchTop& bench);
  ~ScopeWindow() override;

  void ShowFrame() override;
  void SetLook(const TraceLook& look) override;
  void Redraw() override;
  void SettingsChanged() override;
  void FileLoaded() override;
  /// The graph has the first claim to room: what it needs there.
  void SetRoom(const QSize& workspace) override;
  /// With the page below the graph folded, which it is where there is no room for both, unless the
  /// user has opened it; with the constants beside the graph, where they have room.
  QSize minimumSizeHint() const override;
  QSize UnfoldedSize() const override;
  QSize FoldedSize() const override;

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void ConnectVertical();
  void ConnectHorizontal();
  void ConnectPages();
  void ConnectCursors(ZelUndo& history);
  void ScaleX();
  void ShowTwoPeriods(const ZelBenchTop& bench);
  void ShowCursors();
  void ShowReading();
  void ConnectMath();
  void ConnectExport(const ZelBenchTop& bench);
  void ShowMath();
  std::array<ReadOutWindow*, 2> Panels() const;
  enum class Constants { Beside, Below };
  int DividedWidth(Constants place) const;
  int WidthWithout(Constants place) const;
  int LeaveFor(const ReadOutWindow& panel) const;
  void OpenPanel(ReadOutWindow& panel);
  void HidePanel(ReadOutWindow& panel);
  void PlacePanels();
  void ShowPage(QWidget& page);
  void ArrangePages();
  void FoldPages();
  int HeightWithout(Constants place) const;
  int HeightWithout() const;
  /// Of the panels that are docked below the graph and the constants.
  int HeightBelow(bool least) const;
  void ConnectTriggerSource();
  void FillChannelLists();
  void FillList(QComboBox& list, int selected);
  void ShowVertical();
  void ShowHorizontal();
  void ShowLamp();
  void SetShown(bool shown);
  void ChooseChannels(ZelUndo& history);
  void SetVertical(double scale, double offset);
  void SetHorizontal(double scale, double offset);
  SignalChannel& VerticalChannel() const;
  ZelChannel& XChannel() const;
  int IndexOf(const ZelChannel& channel) const;

  ZelScope& scope_;
  std::unique_ptr<Ui::ScopeWindow> ui_;
  bool lampShown_ = true;  // differs from the lamp at first, so that it is painted
  ConstantsGrid* constants_ = nullptr;
  EditBinding* vertScale_ = nullptr;
  EditBinding* vertOffset_ = nullptr;
  EditBinding* horizScale_ = nullptr;
  EditBinding* horizOffset_ = nullptr;
  TriggerControls* trigger_ = nullptr;
  TriggerWord* triggerWord_ = nullptr;
  ConstantsSplitter* splitter_ = nullptr;
  /// What the user wants of the page below the graph.
  enum class Folding { AsRoomAllows, Folded, Opened };
  Folding folding_ = Folding::AsRoomAllows;
  bool opened_ = false;
  int leastScreen_ = 0;          // height of the screen with its least graph
  QMainWindow* dock_ = nullptr;  // around the graph and the constants
  CursorsWindow* cursors_ = nullptr;
  MathWindow* math_ = nullptr;
};

}  // namespace torvane
