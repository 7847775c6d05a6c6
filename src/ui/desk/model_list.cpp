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
  connect(&list_, &QComboBox::activated, this, &ModelList::Choose);
  connect(&session_, &Session::ModelChanged, this, [this] {
    const loops::LoopFile* const loop = session_.Loop();
    if (loop) shelf_.Add({QtText(session_.Model()->Name()), QtText(loop->Path)});
  });
}

// Loops of one name are told apart by their files.
void ModelList::Fill() {
  list_.clear();
  for (const std::string& name : session_.Models().Names()) list_.addItem(QtText(name));
  const auto& loops = shelf_.Loops();
  if (!loops.empty()) list_.insertSeparator(list_.count());
  for (const ShelvedLoop& loop : loops) {
    const bool alone = std::ranges::count(loops, loop.Name, &ShelvedLoop::Name) == 1;
    const QFileInfo file(loop.Path);
    list_.addItem(
        alone ? loop.Name
              : QStringLiteral("%1 (%2/%3)").arg(loop.Name, file.dir().dirName(), file.fileName()),
        loop.Path);
    list_.setItemData(list_.count() - 1, loop.Path, Qt::ToolTipRole);
  }
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

void ModelList::Choose(int index) {
  const QString loop = list_.itemData(index).toString();
  const std::string name = list_.itemText(index).toStdString();
  if (index == IndexOfPresent()) {
    if (session_.MayDiscard()) session_.BuildAnew();
  } else if (!loop.isEmpty()) {
    session_.Open(loop);
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
