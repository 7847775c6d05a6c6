#include "ui/panes/analyser/analyser_axes.h"

#include <utility>

#include "core/scale_steps.h"
#include "ui/widgets/edit_binding.h"
#include "ui_analyser.h"

namespace torvane {

AnalyserAxes::AnalyserAxes(Ui::AnalyserForm& ui, FrequencyAnalyser& analyser, QObject* parent)
    : QObject(parent), ui_(ui), analyser_(analyser) {
  using F = FrequencyAnalyser;
  ConnectFrequencies();
  ConnectNyquist();
  ConnectScale("Gain", {&F::GainScale, &F::SetGainScale, &F::GainOffset, &F::SetGainOffset});
  ConnectScale("Phase", {&F::PhaseScale, &F::SetPhaseScale, &F::PhaseOffset, &F::SetPhaseOffset});
  const std::pair<QAbstractButton*, QWidget*> pages[] = {{ui.PageGain, ui.GainPage},
                                                         {ui.PagePhase, ui.PhasePage}};
  for (const auto& [button, page] : pages) {
    connect(button, &QAbstractButton::clicked, ui.Pages,
            [this, page = page] { ui_.Pages->setCurrentWidget(page); });
  }
}

// What was refused has been reported.
void AnalyserAxes::Bind(QLineEdit& edit, Getter get, Setter set) {
  const auto notice = [](double typed, double stored) {
    return typed > 0.0 ? LimitNotice(typed, stored) : std::string();
  };
  edits_.push_back(BindNumber(
      edit, [this, set](double value) { (analyser_.*set)(value); },
      [this, get] { return (analyser_.*get)(); }, notice));
}

void AnalyserAxes::BindButton(QAbstractButton& button, Setter set,
                              std::function<double()> changed) {
  connect(&button, &QAbstractButton::clicked, this,
          [this, set, changed = std::move(changed)] { (analyser_.*set)(changed()); });
}

void AnalyserAxes::ConnectFrequencies() {
  using F = FrequencyAnalyser;
  Bind(*ui_.EFreqMin, &F::FreqMin, &F::SetFreqMin);
  Bind(*ui_.EFreqMax, &F::FreqMax, &F::SetFreqMax);
  const auto step = [this](Getter get, double (*next)(double, Ladder)) {
    return [=, this] { return next((analyser_.*get)(), CoarseLadder()); };
  };
  BindButton(*ui_.FreqMinDown, &F::SetFreqMin, step(&F::FreqMin, NextLowestThisArray));
  BindButton(*ui_.FreqMinUp, &F::SetFreqMin, step(&F::FreqMin, NextHighestThisArray));
  BindButton(*ui_.FreqMaxDown, &F::SetFreqMax, step(&F::FreqMax, NextLowestThisArray));
  BindButton(*ui_.FreqMaxUp, &F::SetFreqMax, step(&F::FreqMax, NextHighestThisArray));
}

// Whatever is set, the rest stays as it is shown: a plot no longer fits itself to its traces then.
void AnalyserAxes::ConnectNyquist() {
  const auto shown = [this] {
    NyquistWindow window = analyser_.Nyquist();
    window.Scale = ui_.PBPlot->NyquistScale();
    return window;
  };
  const auto bind = [&](QLineEdit& edit, double NyquistWindow::*number) {
    const auto set = [this, shown, number](double value) {
      NyquistWindow window = shown();
      window.*number = value;
      analyser_.SetNyquist(window);
    };
    const auto notice = [](double typed, double stored) {
      return typed == 0.0 ? std::string("fitted to the traces") : LimitNotice(typed, stored);
    };
    edits_.push_back(BindNumber(
        edit, set, [shown, number] { return shown().*number; }, notice));
    return set;
  };
  const auto setScale = bind(*ui_.ENyquistScale, &NyquistWindow::Scale);
  bind(*ui_.ENyquistReal, &NyquistWindow::Real);
  bind(*ui_.ENyquistImaginary, &NyquistWindow::Imaginary);
  connect(ui_.BNyquistScaleDown, &QAbstractButton::clicked, this,
          [=] { setScale(NextLowest125(shown().Scale)); });
  connect(ui_.BNyquistScaleUp, &QAbstractButton::clicked, this,
          [=] { setScale(NextHighest125(shown().Scale)); });
  connect(ui_.BNyquistFit, &QAbstractButton::clicked, ui_.PBPlot,
          &ResponsePaintBox::ShowWholePlane);
}

// The controls of gain and phase are called alike.
void AnalyserAxes::ConnectScale(const char* quantity, const Scale& scale) {
  const auto find = [&](const char* pattern) {
    return QString::fromLatin1(pattern).arg(QLatin1String(quantity));
  };
  const auto button = [&](const char* pattern) -> QAbstractButton& {
    return *ui_.Pages->findChild<QAbstractButton*>(find(pattern));
  };
  const auto edit = [&](const char* pattern) -> QLineEdit& {
    return *ui_.Pages->findChild<QLineEdit*>(find(pattern));
  };
  const auto value = [this, get = scale.Value] { return (analyser_.*get)(); };
  const auto offset = [this, get = scale.Offset] { return (analyser_.*get)(); };
  Bind(edit("E%1Scale"), scale.Value, scale.Set);
  Bind(edit("E%1Offset"), scale.Offset, scale.SetOffset);
  BindButton(button("B%1ScaleDown"), scale.Set, [=] { return NextLowest125(value()); });
  BindButton(button("B%1ScaleUp"), scale.Set, [=] { return NextHighest125(value()); });
  BindButton(button("B%1OffsetDown"), scale.SetOffset, [=] { return offset() - value(); });
  BindButton(button("B%1OffsetUp"), scale.SetOffset, [=] { return offset() + value(); });
  BindButton(button("B%1Zero"), scale.SetOffset, [] { return 0.0; });
}

void AnalyserAxes::Show() {
  for (EditBinding* edit : edits_) edit->Show();
}

}  // namespace torvane
