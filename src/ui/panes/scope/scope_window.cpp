#include "ui/panes/scope/scope_window.h"

#include <QCloseEvent>
#include <QMainWindow>
#include <QSignalBlocker>
#include <algorithm>
#include <array>
#include <memory>

#include "core/messages.h"
#include "core/scale_steps.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope_csv.h"
#include "plot/scope_colours.h"
#include "ui/panes/constants/constants_grid.h"
#include "ui/panes/constants/constants_splitter.h"
#include "ui/panes/scope/add_dialog.h"
#include "ui/panes/scope/cursors_window.h"
#include "ui/panes/scope/load_traces.h"
#include "ui/panes/scope/math_window.h"
#include "ui/panes/scope/trigger_controls.h"
#include "ui/panes/scope/trigger_word.h"
#include "ui/widgets/double_click.h"
#include "ui/widgets/edit_binding.h"
#include "ui/widgets/export_menu.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/pane_dialog.h"
#include "ui/widgets/swatch.h"
#include "ui/widgets/window_place.h"
#include "ui_scope.h"

namespace torvane {

namespace {

constexpr int TimeAxis = -1;  // in the list of X axes, before the channels
constexpr QRgb Lime = 0x00ff00;
constexpr QRgb Silver = 0xc0c0c0;
// Of a control that is opaque Qt takes it that no other window covers it, after it has been moved.
constexpr int AllButOpaque = 254;
QIcon SwatchOf(const ScopeColours& colours, const ZelChannel& channel) {
  const bool traced = channel.Displayed() && channel.Colour() >= 0;
  return Swatch(traced ? std::optional(colours.Trace(channel.Colour())) : std::nullopt);
}

QString ChannelLabel(const ScopeColours& colours, const ZelChannel& channel) {
  QString label = QString::fromStdString(channel.Name());
  if (channel.Displayed() && channel.Colour() >= 0) {
    label += QStringLiteral(" (%1)").arg(QLatin1String(colours.Label(channel.Colour())));
  }
  return label;
}

// What the signal is, with its unit.
QString Hint(const Variable& signal) {
  std::string hint = signal.Name();
  if (!signal.Description().empty()) hint += ": " + signal.Description();
  if (!signal.Unit().empty()) hint += " [" + signal.Unit() + "]";
  return QString::fromStdString(hint);
}

// A scale of zero is refused with a report of its own.
std::string ScaleNotice(double typed, double stored) {
  return typed == 0.0 ? std::string() : LimitNotice(typed, stored);
}

}  // namespace

ScopeWindow::ScopeWindow(ZelScope& scope, ZelBenchTop& bench)
    : InstrumentPane(scope), scope_(scope), ui_(std::make_unique<Ui::ScopeWindow>()) {
  ui_->setupUi(this);
  setWindowIcon(QIcon(QStringLiteral(":/icons/scope.svg")));
  if (scope.Name() != "MainScope") setWindowTitle(QString::fromStdString(scope.Name()));
  ui_->PBScreen->SetScope(scope);
  constants_ = new ConstantsGrid(*ui_->SGConsts, bench);
  dock_ = &MakeDockAround(*ui_->Splitter1);
  dock_->lower();  // the constants come first for who goes through the panes by keys
  splitter_ = new ConstantsSplitter(*ui_->Splitter1, *ui_->SGConsts, scope,
                                    constants_->FittingWidth(), this);
  cursors_ = new CursorsWindow(scope, this);
  math_ = new MathWindow(scope, this);
  for (ReadOutWindow* panel : Panels()) {
    panel->hide();
    connect(panel, &QDockWidget::topLevelChanged, this, &ScopeWindow::FoldPages);
    connect(panel, &QDockWidget::dockLocationChanged, this, &ScopeWindow::FoldPages);
  }
  FillChannelLists();
  ConnectVertical();
  for (QAbstractButton* button : {ui_->BVertAdd, ui_->BVertRemove}) {
    connect(
        button, &QAbstractButton::clicked, this,
        [this, &bench] { ChooseChannels(bench.History()); }, Qt::QueuedConnection);
  }
  ConnectHorizontal();
  ConnectTriggerSource();
  trigger_ = new TriggerControls(*ui_, scope, this);
  triggerWord_ = new TriggerWord(*ui_->LTrigState, scope);
  ConnectPages();
  ConnectCursors(bench.History());
  ConnectMath();
  ConnectExport(bench);
  connect(ui_->BHorizAuto, &QAbstractButton::clicked, this,
          [this, &bench] { scope_.XYMode() ? ScaleX() : ShowTwoPeriods(bench); });
  SettingsChanged();
}

ScopeWindow::~ScopeWindow() = default;

void ScopeWindow::ConnectVertical() {
  const auto channel = [this]() -> SignalChannel& { return VerticalChannel(); };
  const auto clicked = [this](QAbstractButton* button, auto action) {
    connect(button, &QAbstractButton::clicked, this, action);
  };
  vertScale_ = BindNumber(
      *ui_->EVertScale, [=, this](double s) { SetVertical(s, channel().Vertical().Offset); },
      [=] { return channel().Vertical().Scale; }, ScaleNotice);
  vertOffset_ = BindNumber(
      *ui_->EVertOffset, [=, this](double o) { SetVertical(channel().Vertical().Scale, o); },
      [=] { return channel().Vertical().Offset; });
  const auto step = [=, this](auto change) {
    return [=, this] {
      const AxisScale changed = change(channel().Vertical());
      SetVertical(changed.Scale, changed.Offset);
    };
  };
  using A = AxisScale;
  clicked(ui_->BVScaleUp, step([](A a) { return A{NextHighest125(a.Scale), a.Offset}; }));
  clicked(ui_->BVScaleDown, step([](A a) { return A{NextLowest125(a.Scale), a.Offset}; }));
  clicked(ui_->BBVertScaleSign, step([](A a) { return A{-a.Scale, a.Offset}; }));
  clicked(ui_->BVOffsetUp, step([](A a) { return A{a.Scale, a.Offset + a.Scale}; }));
  clicked(ui_->BVOffsetDown, step([](A a) { return A{a.Scale, a.Offset - a.Scale}; }));
  clicked(ui_->BVertOffsetSign, step([](A a) { return A{a.Scale, -a.Offset}; }));
  clicked(ui_->BVertZero, step([](A a) { return A{a.Scale, 0.0}; }));
  clicked(ui_->BVertAuto, [=, this] { scope_.AutoVertical(channel(), ui_->PBScreen->Shown()); });
  clicked(ui_->BVertFill, [=, this] { scope_.FillVertical(channel(), ui_->PBScreen->Shown()); });
  connect(ui_->CmBVertChan, &QComboBox::currentIndexChanged, this, &ScopeWindow::ShowVertical);
  new DoubleClick(*ui_->CmBVertChan, [this] { SetShown(!VerticalChannel().Displayed()); });
  connect(ui_->CBVertShow, &QCheckBox::toggled, this, &ScopeWindow::SetShown);
}

void ScopeWindow::ConnectHorizontal() {
  const auto clicked = [this](QAbstractButton* button, auto action) {
    connect(button, &QAbstractButton::clicked, this, action);
  };
  horizScale_ = BindNumber(
      *ui_->EHorizScale, [this](double s) { SetHorizontal(s, XChannel().Horizontal().Offset); },
      [this] { return XChannel().Horizontal().Scale; }, ScaleNotice);
  horizOffset_ = BindNumber(
      *ui_->EHorizOffset, [this](double o) { SetHorizontal(XChannel().Horizontal().Scale, o); },
      [this] { return XChannel().Horizontal().Offset; });
  const auto step = [this](auto change) {
    return [=, this] {
      const AxisScale changed = change(XChannel().Horizontal());
      SetHorizontal(changed.Scale, changed.Offset);
    };
  };
  using A = AxisScale;
  clicked(ui_->BHorizScaleUp, step([](A a) { return A{NextHighest125(a.Scale), a.Offset}; }));
  clicked(ui_->BHorizScaleDown, step([](A a) { return A{NextLowest125(a.Scale), a.Offset}; }));
  clicked(ui_->BBHorizScaleSign, step([](A a) { return A{-a.Scale, a.Offset}; }));
  clicked(ui_->BHorizOffsetUp, step([](A a) { return A{a.Scale, a.Offset + a.Scale}; }));
  clicked(ui_->BHorizOffsetDown, step([](A a) { return A{a.Scale, a.Offset - a.Scale}; }));
  clicked(ui_->BBHorizOffsetSign, step([](A a) { return A{a.Scale, -a.Offset}; }));
  clicked(ui_->BHorizZero, step([](A a) { return A{a.Scale, 0.0}; }));
  connect(ui_->CmBHorizChan, &QComboBox::currentIndexChanged, this, [this] {
    const int index = ui_->CmBHorizChan->currentData().toInt();
    scope_.SetHorizontalChannel(index == TimeAxis
                                    ? static_cast<ZelChannel&>(scope_.TimeChannel())
                                    : *scope_.Channels()[static_cast<std::size_t>(index)]);
  });
}

void ScopeWindow::ConnectTriggerSource() {
  connect(ui_->CmBTrigSource, &QComboBox::currentIndexChanged, this, [this](int) {
    const std::size_t index = ui_->CmBTrigSource->currentData().toUInt();
    scope_.Trigger().SetSource(*scope_.Channels()[index]);
  });
}

void ScopeWindow::ConnectCursors(ZelUndo& history) {
  const std::array modes = {ui_->SBNoCursors, ui_->SBOneCursor, ui_->SBTwoCursors};
  for (int mode = 0; QAbstractButton * button : modes) {
    connect(button, &QAbstractButton::clicked, this, [this, mode] {
      scope_.SetCursorMode(mode);
      if (mode > 0 && scope_.XYMode()) Note("Scope cursors are not active in X-Y Mode");
    });
    ++mode;
  }
  connect(ui_->PBScreen, &ScopePaintBox::GestureBegun, this, [&] { history.BeginGesture(); });
  connect(ui_->PBScreen, &ScopePaintBox::GestureEnded, this, [&] { history.EndGesture(); });
  connect(ui_->PBScreen, &ScopePaintBox::ColoursChanged, this, &ScopeWindow::FillChannelLists);
  connect(ui_->PBScreen, &ScopePaintBox::ChannelChosen, this, [this](std::size_t index) {
    ui_->CmBVertChan->setCurrentIndex(ui_->CmBVertChan->findData(static_cast<int>(index)));
  });
}

void ScopeWindow::ConnectMath() {
  connect(ui_->SBMath, &QAbstractButton::toggled, this, &ScopeWindow::ShowMath);
  connect(ui_->BKeep, &QAbstractButton::clicked, this, [this] {
    const ScopeScreen& screen = ui_->PBScreen->Screen();
    if (screen.PointCount() == 0) ShowNotice(*ui_->BKeep, QStringLiteral("No traces yet"));
    scope_.KeepTraces(screen);
  });
  auto* keep = new QMenu(ui_->BKeep);
  QAction* load = keep->addAction(QStringLiteral("Load traces..."));
  load->setObjectName(QStringLiteral("MILoadTraces"));
  connect(load, &QAction::triggered, this, [this] { LoadTraces(scope_, *this); });
  ui_->BKeep->setMenu(keep);
  connect(ui_->BClearKept, &QAbstractButton::clicked, this, [this] { scope_.ClearKeptTraces(); });
  connect(math_, &MathWindow::Closed, this, [this] { ui_->SBMath->setChecked(false); });
}

void ScopeWindow::ConnectExport(const ZelBenchTop& bench) {
  const auto heading = QStringLiteral("%1 - %2");
  const QString model = QString::fromStdString(bench.ModelName());
  const auto picture = [this] {
    return ScopePicture(scope_, ui_->PBScreen->Screen(), &VerticalChannel(), ui_->PBScreen->Look());
  };
  const auto csv = [this] { return ScreenCsv(scope_, ui_->PBScreen->Screen()); };
  auto* menu = new ExportMenu(
      *ui_->PBScreen, {heading.arg(model, windowTitle()), QStringLiteral("scope"), picture, csv});
  ui_->BExport->setMenu(menu);
  // Its dialog opens after the click: when another model comes meanwhile the button goes, and may
  // not be in the middle of one.
  connect(ui_->PrintB, &QAbstractButton::clicked, menu, &ExportMenu::Print, Qt::QueuedConnection);
}

void ScopeWindow::ScaleX() {
  const auto index = static_cast<std::size_t>(ui_->CmBHorizChan->currentData().toInt());
  scope_.AutoHorizontal(*scope_.Channels()[index], ui_->PBScreen->Shown());
}

// The next scale of 1, 2, 5, 10 that shows two periods of the command.
void ScopeWindow::ShowTwoPeriods(const ZelBenchTop& bench) {
  const auto& generators = bench.Instruments(InstrumentKind::WaveGenerator);
  const auto* command =
      generators.empty() ? nullptr : dynamic_cast<const ZelWave*>(generators.front());
  if (!command || command->Settings().FreqHz <= 0.0) {
    ShowNotice(*ui_->BHorizAuto, QStringLiteral("The command has no period"));
    return;
  }
  const double time = scope_.TimeChannel().Signal().Multiplier() * 2.0 / command->Settings().FreqHz;
  const double least = time / ZelScope::HorizontalDivisions;
  // A scale that fits to the rounding is not passed over.
  SetHorizontal(NextHighest125(least * 0.99999), XChannel().Horizontal().Offset);
}

// Lists name each displayed channel with its colour, so they change with the set of traces.
void ScopeWindow::FillChannelLists() {
  const auto selected = [](const QComboBox& list) {
    return list.count() > 0 ? list.currentData().toInt() : 0;
  };
  const int vertical = ui_->CmBVertChan->count() > 0 ? selected(*ui_->CmBVertChan)
                                                     : IndexOf(scope_.FirstDisplayedChannel());
  FillList(*ui_->CmBVertChan, vertical);
  FillList(*ui_->CmBTrigSource, IndexOf(scope_.Trigger().Source()));

  const QSignalBlocker blocker(ui_->CmBHorizChan);
  FillList(*ui_->CmBHorizChan, 0);
  const QString time = QString::fromStdString(scope_.TimeChannel().Name());
  ui_->CmBHorizChan->insertItem(0, Swatch({}), time, TimeAxis);
  const int horizontal = scope_.XYMode() ? IndexOf(XChannel()) : TimeAxis;
  ui_->CmBHorizChan->setCurrentIndex(ui_->CmBHorizChan->findData(horizontal));
}

void ScopeWindow::FillList(QComboBox& list, int selected) {
  const QSignalBlocker blocker(&list);
  list.clear();
  const ScopeColours colours = ui_->PBScreen->Colours();
  for (int index = 0; const auto& channel : scope_.Channels()) {
    list.addItem(SwatchOf(colours, *channel), ChannelLabel(colours, *channel), index);
    list.setItemData(index++, Hint(channel->Signal()), Qt::ToolTipRole);
  }
  list.setCurrentIndex(list.findData(selected));
}

void ScopeWindow::ShowVertical() {
  vertScale_->Show();
  vertOffset_->Show();
  {
    const QSignalBlocker blocker(ui_->CBVertShow);
    ui_->CBVertShow->setChecked(VerticalChannel().Displayed());
  }
  ui_->PBScreen->SetReference(&VerticalChannel());
}

void ScopeWindow::ShowHorizontal() {
  horizScale_->Show();
  horizOffset_->Show();
  // Without a time axis there is no moment of the screen to tie an event to.
  const bool timeAxis = !scope_.XYMode();
  for (QWidget* control : std::initializer_list<QWidget*>{
           ui_->LTrigSource, ui_->CmBTrigSource, ui_->RGTrigSlope, ui_->LTrigLevel, ui_->ETrigLevel,
           ui_->LTrigPosition, ui_->ETrigPosition}) {
    control->setEnabled(timeAxis);
  }
  // The time axis begins at the screen's left edge and runs to the right.
  for (QWidget* control : std::initializer_list<QWidget*>{
           ui_->BBHorizScaleSign, ui_->EHorizOffset, ui_->BHorizOffsetUp, ui_->BHorizOffsetDown,
           ui_->BBHorizOffsetSign, ui_->BHorizZero}) {
    control->setEnabled(!timeAxis);
  }
  const QString automatic =
      timeAxis ? QStringLiteral("Show two periods of the command generator")
               : QStringLiteral("Scale the X axis around zero to the larger of its extremes");
  ui_->BHorizAuto->setToolTip(automatic);
  ui_->BHorizAuto->setAccessibleName(automatic);
  ui_->PBScreen->Refresh();
}

void ScopeWindow::ShowCursors() {
  const std::array modes = {ui_->SBNoCursors, ui_->SBOneCursor, ui_->SBTwoCursors};
  modes[static_cast<std::size_t>(scope_.Cursors().Mode)]->setChecked(true);
  ui_->PBScreen->update();
  const bool shown = scope_.Cursors().Mode > 0 && !scope_.XYMode() && isVisible();
  ShowReading();
  shown ? OpenPanel(*cursors_) : HidePanel(*cursors_);
  PlacePanels();
}

void ScopeWindow::ShowMath() {
  const bool shown = ui_->SBMath->isChecked() && isVisible();
  if (shown) {
    const ScopeScreen& live = ui_->PBScreen->Screen();
    const ScreenPixels pixels = ui_->PBScreen->Pixels();
    std::vector<ChannelMeasures> kept;
    if (scope_.Kept()) {
      kept = MeasureScreen(scope_, OnTimeAxisOf(scope_, *scope_.Kept(), live), pixels);
    }
    math_->ShowMeasures(MeasureScreen(scope_, live, pixels), kept);
    OpenPanel(*math_);
  } else {
    HidePanel(*math_);
  }
  PlacePanels();
}

void ScopeWindow::ShowReading() {
  if (scope_.Cursors().Mode == 0) return;
  cursors_->ShowReading(ReadCursors(scope_, ui_->PBScreen->Screen(), ui_->PBScreen->Pixels()));
}

void ScopeWindow::SetVertical(double scale, double offset) {
  ZelChannel& channel = VerticalChannel();
  if (scale != channel.Vertical().Scale) scope_.SetVerticalScale(channel, scale);
  if (offset != channel.Vertical().Offset) scope_.SetVerticalOffset(channel, offset);
  ShowVertical();
}

void ScopeWindow::SetHorizontal(double scale, double offset) {
  ZelChannel& channel = XChannel();
  if (scale != channel.Horizontal().Scale) scope_.SetHorizontalScale(channel, scale);
  if (offset != channel.Horizontal().Offset) scope_.SetHorizontalOffset(channel, offset);
  ShowHorizontal();
}

void ScopeWindow::SetShown(bool shown) {
  scope_.SetDisplayed(VerticalChannel(), shown);
  SettingsChanged();  // a ninth trace was refused
}

// Whatever is chosen is one change.
void ScopeWindow::ChooseChannels(ZelUndo& history) try {
  std::vector<ShownItem> items;
  for (const auto& channel : scope_.Channels()) {
    items.push_back({channel->Name(), channel->Displayed(),
                     [this, &channel](bool show) { scope_.SetDisplayed(*channel, show); }});
  }
  auto dialog = std::make_unique<AddDialog>(std::move(items), this);
  AddDialog& chosen = *dialog;
  AskOver(*this, std::move(dialog), [&] {
    history.BeginGesture();
    chosen.Apply();
    history.EndGesture();
    SettingsChanged();
  });
} catch (const std::exception&) {
  Error("Fault in TZelScopeF :: BVertAddClick");
}

SignalChannel& ScopeWindow::VerticalChannel() const {
  return *scope_.Channels()[static_cast<std::size_t>(ui_->CmBVertChan->currentData().toInt())];
}

ZelChannel& ScopeWindow::XChannel() const {
  ZelChannel* horizontal = scope_.HorizontalChannel();
  return horizontal ? *horizontal : static_cast<ZelChannel&>(scope_.TimeChannel());
}

int ScopeWindow::IndexOf(const ZelChannel& channel) const {
  const auto& channels = scope_.Channels();
  for (std::size_t index = 0; index < channels.size(); ++index) {
    if (channels[index].get() == &channel) return static_cast<int>(index);
  }
  return 0;
}

void ScopeWindow::ShowFrame() {
  ui_->PBScreen->Refresh();
}

void ScopeWindow::Redraw() {
  ui_->PBScreen->Refresh();
  ShowLamp();
  triggerWord_->Show();
  ShowReading();
  ShowMath();
}

void ScopeWindow::SetLook(const TraceLook& look) {
  ui_->PBScreen->SetLook(look);
}

void ScopeWindow::ShowLamp() {
  if (lampShown_ == scope_.TriggerLit()) return;
  lampShown_ = scope_.TriggerLit();
  QPalette colours = ui_->TriggeredP->palette();
  QColor colour(lampShown_ ? Lime : Silver);
  colour.setAlpha(AllButOpaque);
  colours.setColor(QPalette::Window, colour);
  colours.setColor(QPalette::WindowText, Qt::black);
  ui_->TriggeredP->setPalette(colours);
}

void ScopeWindow::SettingsChanged() {
  FillChannelLists();
  ShowVertical();
  ShowHorizontal();
  trigger_->Show();
  splitter_->Show();
  ui_->BClearKept->setEnabled(scope_.Kept() != nullptr);
  ShowCursors();
  ShowMath();
}

// The signal whose scale is edited is one that is seen.
void ScopeWindow::FileLoaded() {
  if (!VerticalChannel().Displayed()) {
    ui_->CmBVertChan->setCurrentIndex(
        ui_->CmBVertChan->findData(IndexOf(scope_.FirstDisplayedChannel())));
  }
  constants_->FileLoaded();
}

void ScopeWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  Note("Scope cannot be closed.");
}

void ScopeWindow::hideEvent(QHideEvent* event) {
  InstrumentPane::hideEvent(event);
  if (event->spontaneous()) return;
  constants_->HideDialogs();
  cursors_->hide();
  math_->hide();
}

void ScopeWindow::showEvent(QShowEvent* event) {
  InstrumentPane::showEvent(event);
  // The window opens with the constants, not with a page's button.
  if (!opened_) ui_->SGConsts->setFocus();
  opened_ = true;
  ShowLamp();
  ShowCursors();
  ShowMath();
}

}  // namespace torvane
