#include "ui/panes/diagram/loop_picture.h"

#include <QDir>
#include <QFileInfo>

#include "core/files/loop_record.h"
#include "core/model.h"
#include "plot/qt_text.h"

namespace torvane {

bool IsOwnLoop(const ZelModel& model) {
  return !LoopRecord(model).empty();
}

// A loop may come from a stranger, who is not to choose among the user's files.
QString LoopPicture(const ZelModel& model) {
  const QString name = QDir::cleanPath(QtText(model.PictureFile()));
  if (name.isEmpty() || QDir::isAbsolutePath(name) || name.startsWith(QStringLiteral(".."))) {
    return {};
  }
  return QFileInfo(QtText(model.TextFile())).dir().filePath(name);
}

}  // namespace torvane
