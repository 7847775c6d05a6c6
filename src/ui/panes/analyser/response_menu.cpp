#include "ui/panes/analyser/response_menu.h"

#include <QActionGroup>
#include <QFileInfo>
#include <QPointer>
#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "core/messages.h"
#include "instruments/analyser/response_csv.h"
#include "ui/panes/analyser/response_units_dialog.h"
#include "ui/widgets/pane_dialog.h"

namespace torvane {

ResponseMenu::ResponseMenu(FrequencyAnalyser& analyser, const ZelBenchTop& bench, QMenu& exports,
                           QWidget* parent)
    : QObject(parent), analyser_(analyser), window_(parent), menu_(parent) {
  menu_.setObjectName(QStringLiteral("PMStoreShow"));
  AddSave();
  AddLoad();
  AddOthers(bench);
  AddShow();
  AddScreen();
  exports.setTitle(QStringLiteral("Export"));
  menu_.addMenu(&exports);
}

QAction* ResponseMenu::Add(QMenu& menu, const QString& text, const char* name) {
  QAction* item = menu.addAction(text);
  item->setObjectName(QLatin1String(name));
  return item;
}

void ResponseMenu::AddSave() {
  save_ = menu_.addMenu(QStringLiteral("Save"));
  save_->menuAction()->setObjectName(QStringLiteral("MISave"));
  for (int slot = 1; slot < FrequencyAnalyser::SlotCount; ++slot) {
    QAction* item = Add(*save_, QStringLiteral("Memory &%1").arg(slot),
                        qPrintable(QStringLiteral("MIMemory%1").arg(slot)));
    connect(item, &QAction::triggered, this, [this, slot] { analyser_.StoreData(slot); });
  }
}

void ResponseMenu::AddLoad() {
  load_ = menu_.addMenu(QStringLiteral("Load"));
  load_->menuAction()->setObjectName(QStringLiteral("MILoadMemory"));
  for (int slot = 1; slot < FrequencyAnalyser::SlotCount; ++slot) {
    QAction* item = Add(*load_, QStringLiteral("Memory &%1...").arg(slot),
                        qPrintable(QStringLiteral("MILoadMemory%1").arg(slot)));
    connect(item, &QAction::triggered, this, [this, slot] { Load(slot); });
  }
}

// What a bench or torvane-cli has measured lies over what is measured here.
void ResponseMenu::Load(int slot) {
  const QString path = AskForFile(
      *window_, {QStringLiteral("LoadResponseDialog"), QStringLiteral("Load a Response"),
                 QStringLiteral("Frequency, gain and phase (*.csv *.txt);;All files (*)")});
  if (path.isEmpty()) return;
  ResponseText text = ReadResponseFile(path.toStdString());
  if (text.UnitsMissing) {
    auto dialog = std::make_unique<ResponseUnitsDialog>(path.toStdString(), text, window_);
    const ResponseUnitsDialog& units = *dialog;
    if (!AskOver(*window_, std::move(dialog), [&] { text = units.Text(); })) return;
  }
  if (!text.Fault.empty()) {
    Error(text.Fault);
    return;
  }
  const std::string file = QFileInfo(path).fileName().toStdString();
  const QPointer<ResponseMenu> asking(this);
  const std::size_t count = MemoriesFor(slot, text.Responses.size(), file);
  if (!asking) return;  // another model came while that was asked
  for (std::size_t i = 0; i < count; ++i) {
    NamedResponse& response = text.Responses[i];
    const std::string name = response.Name.empty() ? file : file + " " + response.Name;
    analyser_.LoadMemory(slot + static_cast<int>(i), std::move(response.Curve), name);
  }
  if (!text.Note.empty()) Note("\"" + file + "\": " + text.Note);
}

// How many of a file's responses are loaded: further ones go into the memories behind, and replace
// what is there when the user says so. What has no memory is told.
std::size_t ResponseMenu::MemoriesFor(int first, std::size_t responses,
                                      const std::string& file) const {
  const auto behind = static_cast<std::size_t>(FrequencyAnalyser::SlotCount - first);
  const std::size_t count = std::min(responses, behind);
  std::string taken;
  for (int slot = first + 1; slot < first + static_cast<int>(count); ++slot) {
    if (analyser_.HasData(slot)) taken += (taken.empty() ? "" : ", ") + std::to_string(slot);
  }
  const std::string holds = "\"" + file + "\" holds " + std::to_string(responses) + " responses";
  if (!taken.empty() &&
      !WarningQuestion(holds + ".  They would replace what is in Memory " + taken +
                       ", too.  Press OK to replace it, Cancel to load the first one alone.")) {
    return 1;
  }
  if (count < responses) Note(holds + ": there were memories for " + std::to_string(count) + ".");
  return count;
}

// Where a display has room for one of them, both are compared in it.
void ResponseMenu::AddOthers(const ZelBenchTop& bench) {
  for (const InstrumentKind kind : {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine}) {
    for (Instrument* instrument : bench.Instruments(kind)) {
      auto* other = dynamic_cast<FrequencyAnalyser*>(instrument);
      if (!other || other == &analyser_) continue;
      AddCopy(*save_, "To %1", analyser_, *other);
      AddCopy(*load_, "From %1", *other, analyser_);
    }
  }
}

// Windows have their titles when both stand.
void ResponseMenu::AddCopy(QMenu& menu, const char* text, FrequencyAnalyser& from,
                           FrequencyAnalyser& to) {
  const FrequencyAnalyser& other = &from == &analyser_ ? to : from;
  QMenu* memories = menu.addMenu(QString());
  const QString way = QString::fromLatin1(text).section(u' ', 0, 0);
  memories->setObjectName(way + QString::fromStdString(other.Name()));
  const auto title = [](const FrequencyAnalyser& analyser) {
    const auto* pane = dynamic_cast<const QWidget*>(analyser.Instrument::View());
    return pane ? pane->windowTitle() : QString::fromStdString(analyser.Name());
  };
  connect(&menu, &QMenu::aboutToShow, memories,
          [=, &other] { memories->setTitle(QString::fromLatin1(text).arg(title(other))); });
  for (int slot = 1; slot < FrequencyAnalyser::SlotCount; ++slot) {
    QAction* item = memories->addAction(QStringLiteral("Memory &%1").arg(slot));
    connect(item, &QAction::triggered, this,
            [=, &from, &to] { to.CopyFrom(from, slot, title(from).toStdString()); });
  }
}

void ResponseMenu::AddShow() {
  QMenu* menu = menu_.addMenu(QStringLiteral("Show"));
  menu->menuAction()->setObjectName(QStringLiteral("MIShow"));
  menu->setToolTip(QStringLiteral("The trace that the cursors read"));
  auto* group = new QActionGroup(this);
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    const QString name =
        slot == 0 ? QStringLiteral("MICurrent") : QStringLiteral("MIMemory%1B").arg(slot);
    const QString text =
        slot == 0 ? QStringLiteral("&Current") : QStringLiteral("Memory &%1").arg(slot);
    QAction* item = Add(*menu, text, qPrintable(name));
    item->setCheckable(true);
    group->addAction(item);
    connect(item, &QAction::triggered, this, [this, slot] {
      emit CursorTraceChosen(slot);
      Show();
    });
    cursorTraces_[static_cast<std::size_t>(slot)] = item;
  }
}

void ResponseMenu::AddScreen() {
  QMenu* menu = menu_.addMenu(QStringLiteral("Screen"));
  menu->menuAction()->setObjectName(QStringLiteral("MIScreen"));
  auto* group = new QActionGroup(this);
  single_ = Add(*menu, QStringLiteral("Si&ngle"), "MISingle");
  split_ = Add(*menu, QStringLiteral("S&plit"), "MISplit");
  for (QAction* item : {single_, split_}) {
    item->setCheckable(true);
    group->addAction(item);
    connect(item, &QAction::triggered, this,
            [this, item] { analyser_.SetSplitScreen(item == split_); });
  }
}

void ResponseMenu::Show() {
  save_->menuAction()->setEnabled(!analyser_.OutputOnly());
  cursorTraces_[static_cast<std::size_t>(analyser_.CursorSlot())]->setChecked(true);
  (analyser_.SplitScreen() ? split_ : single_)->setChecked(true);
}

}  // namespace torvane
