#include "ui/panes/response_menu.h"

#include <QActionGroup>

namespace torvane {

ResponseMenu::ResponseMenu(FrequencyAnalyser& analyser, QWidget* parent)
    : QObject(parent), analyser_(analyser), menu_(parent) {
  menu_.setObjectName(QStringLiteral("PMStoreShow"));
  AddSave();
  AddShow();
  AddScreen();
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
