#include "ui/panes/analyser/response_view_menu.h"

#include <QActionGroup>

namespace torvane {

ResponseViewMenu::ResponseViewMenu(FrequencyAnalyser& analyser, QWidget* parent)
    : QObject(parent), analyser_(analyser), menu_(QStringLiteral("View"), parent) {
  menu_.setObjectName(QStringLiteral("PMView"));
  menu_.setToolTipsVisible(true);
  AddPlots();
  menu_.addSeparator();
  AddSwitches();
}

QAction* ResponseViewMenu::Add(const QString& text, const char* name, const QString& toolTip) {
  QAction* item = menu_.addAction(text);
  item->setObjectName(QLatin1String(name));
  item->setToolTip(toolTip);
  item->setCheckable(true);
  return item;
}

void ResponseViewMenu::AddPlots() {
  plots_ = {
      Add(QStringLiteral("&Bode"), "MIBode", QStringLiteral("Gain and phase against frequency")),
      Add(QStringLiteral("&Nyquist"), "MINyquist", QStringLiteral("Imaginary against real part")),
      Add(QStringLiteral("N&ichols"), "MINichols", QStringLiteral("Gain against phase"))};
  auto* group = new QActionGroup(this);
  for (int plot = 0; QAction * item : plots_) {
    group->addAction(item);
    connect(item, &QAction::triggered, this, [this, plot] {
      ResponseView view = analyser_.View();
      view.Plot = static_cast<ResponsePlot>(plot);
      analyser_.SetView(view);
    });
    ++plot;
  }
}

std::array<ResponseViewMenu::Switch, 4> ResponseViewMenu::Switches() {
  return {{{"MIOpenLoop", QStringLiteral("&Open loop from closed"),
            QStringLiteral("G / (1 - G) of each response G of a loop with unity feedback"),
            &ResponseView::OpenLoop},
           {"MIUnwrapped", QStringLiteral("&Unwrap phase"),
            QStringLiteral("Let the phase go on beyond a turn"), &ResponseView::Unwrapped},
           {"MIGroupDelay", QStringLiteral("&Group delay"),
            QStringLiteral("Show the delay in seconds instead of the phase against frequency"),
            &ResponseView::GroupDelay},
           {"MITheory", QStringLiteral("&Theory"),
            QStringLiteral("What the model's equations say of the chosen signals, as a thin line "
                           "behind the measurement"),
            &ResponseView::Theory}}};
}

void ResponseViewMenu::AddSwitches() {
  for (std::size_t i = 0; const Switch& one : Switches()) {
    QAction* item = Add(one.Text, one.Name, one.ToolTip);
    connect(item, &QAction::triggered, this, [this, on = one.On](bool checked) {
      ResponseView view = analyser_.View();
      view.*on = checked;
      analyser_.SetView(view);
    });
    switches_[i++] = item;
  }
}

// A spectrum is no response of a loop; the group delay stands below a gain.
void ResponseViewMenu::Show() {
  const ResponseView& view = analyser_.View();
  plots_[static_cast<std::size_t>(view.Plot)]->setChecked(true);
  for (std::size_t i = 0; const Switch& one : Switches()) {
    const bool unseen = one.On == &ResponseView::GroupDelay && view.Plot != ResponsePlot::Bode;
    switches_[i]->setEnabled(!analyser_.OutputOnly() && !unseen);
    switches_[i++]->setChecked(view.*one.On);
  }
}

}  // namespace torvane
