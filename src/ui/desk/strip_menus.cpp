#include "ui/desk/strip_menus.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QMenu>

namespace torvane {

void AddListMenu(QMenu& menu, const QString& title, const char* name, QComboBox& list) {
  QMenu* const choices = menu.addMenu(title);
  choices->setObjectName(QLatin1String(name));
  QObject::connect(choices, &QMenu::aboutToShow, &list, [choices, &list] {
    choices->clear();
    for (int i = 0; i < list.count(); ++i) {
      if (list.itemData(i, Qt::AccessibleDescriptionRole) == QStringLiteral("separator")) {
        choices->addSeparator();
        continue;
      }
      QAction* item = choices->addAction(list.itemText(i).replace(u'&', QStringLiteral("&&")));
      item->setCheckable(true);
      item->setChecked(i == list.currentIndex());
      QObject::connect(item, &QAction::triggered, &list, [&list, i] {
        list.setCurrentIndex(i);
        emit list.activated(i);
      });
    }
  });
}

void AddPressItem(QMenu& menu, const QString& text, const char* name, const QKeySequence& key,
                  const std::function<QAbstractButton*()>& button) {
  QAction* const item = menu.addAction(text);
  item->setObjectName(QLatin1String(name));
  item->setShortcut(key);
  QObject::connect(item, &QAction::triggered, &menu, [button] {
    QAbstractButton* const found = button();
    if (found && found->isEnabled()) found->click();
  });
}

}  // namespace torvane
