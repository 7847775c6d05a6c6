#include "ui/desk/model_list.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "core/messages.h"
#include "loops/loop_file.h"
#include "models/catalogue.h"
#include "plot/qt_text.h"
#include "ui/session/loop_shelf.h"
#include "ui/session/session.h"

namespace torvane {

ModelList::ModelList(QComboBox& list, Session& session, LoopShelf& shelf)
    : QObject(&list), list_(list), session_(session), shelf_(shelf) {
  Fill();
  connect(&shelf_, &LoopShelf::Changed, this, &ModelList::Fill);
  connect(&list_, &QComboBox::activated, this, [this](int index) {
    // The open list takes the keys of every window, and a window that is in the midst of handing
    // one on may go with the model: the choice is made after that.
    QMetaObject::invokeMethod(
        this, [this, chosen = At(index)] { Choose(chosen); }, Qt::QueuedConnection);
  });
  connect(&session_, &Session::ModelChanged, this, [this] {
    const loops::LoopFile* const loop = session_.Loop();
    if (loop) shelf_.Add({QtText(session_.Model()->Name()), QtText(loop->Path)});
  });
}

// A line of dashes where there are loops below it. Loops of one name are told apart by their files.
std::vector<ModelList::Item> ModelList::Offered() const {
  std::vector<Item> items;
  for (const std::string& name : session_.Models().Names()) items.push_back({QtText(name), {}});
  const auto& loops = shelf_.Loops();
  if (!loops.empty()) items.emplace_back();
  for (const ShelvedLoop& loop : loops) {
    const bool alone = std::ranges::count(loops, loop.Name, &ShelvedLoop::Name) == 1;
    const QFileInfo file(loop.Path);
    items.push_back(
        {alone ? loop.Name
               : QStringLiteral("%1 (%2/%3)").arg(loop.Name, file.dir().dirName(), file.fileName()),
         loop.Path});
  }
  return items;
}

// What stays keeps its place in a list that is open.
void ModelList::Fill() {
  const std::vector<Item> offered = Offered();
  int row = 0;
  for (const Item& item : offered) {
    while (row < list_.count() && std::ranges::find(offered, At(row)) == offered.end()) {
      list_.removeItem(row);
    }
    if (row == list_.count() || At(row) != item) {
      item.Text.isEmpty() ? list_.insertSeparator(row)
                          : list_.insertItem(row, item.Text, item.Path);
      if (!item.Path.isEmpty()) list_.setItemData(row, item.Path, Qt::ToolTipRole);
    }
    ++row;
  }
  while (list_.count() > row) list_.removeItem(row);
  if (session_.Model()) ShowPresent();
}

int ModelList::IndexOfPresent() const {
  const loops::LoopFile* const loop = session_.Loop();
  return loop ? list_.findData(QtText(loop->Path))
              : list_.findText(QtText(session_.Model()->Name()));
}

void ModelList::ShowPresent() {
  const int index = IndexOfPresent();
  if (list_.currentIndex() != index) list_.setCurrentIndex(index);
}

ModelList::Item ModelList::At(int row) const {
  return {list_.itemText(row), list_.itemData(row).toString()};
}

void ModelList::Choose(const Item& chosen) {
  const std::string name = chosen.Text.toStdString();
  if (chosen == At(IndexOfPresent())) {
    if (session_.MayDiscard()) session_.BuildAnew();
  } else if (!chosen.Path.isEmpty()) {
    session_.Open(chosen.Path);
  } else if (session_.MayDiscard()) {
    if (session_.Models().Find(name)) {
      session_.Choose(name);
    } else {
      Error("Could not find model " + name);
    }
  }
  ShowPresent();
}

}  // namespace torvane
