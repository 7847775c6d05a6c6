#include "ui/panes/diagram/loop_picture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/files/loop_record.h"
#include "core/model.h"
#include "plot/qt_text.h"

namespace torvane {

static constexpr qint64 MostDrawing = qint64{4} << 20U;  // bytes of a file

bool IsOwnLoop(const ZelModel& model) {
  return !LoopRecord(model).empty();
}

bool IsLaidOut(const ZelModel& model) {
  return IsOwnLoop(model) && model.PictureFile().empty();
}

// A loop may come from a stranger, who is not to choose among the user's files.
QString LoopPicture(const ZelModel& model) {
  const QString name = QDir::cleanPath(QtText(model.PictureFile()));
  if (name.isEmpty() || QDir::isAbsolutePath(name) || name.startsWith(QStringLiteral(".."))) {
    return {};
  }
  return QFileInfo(QtText(model.TextFile())).dir().filePath(name);
}

DrawnModel LivingDrawing(const ZelModel& model) {
  if (!IsOwnLoop(model)) return BuiltInDrawing(model);
  QFile file(LoopPicture(model));
  const bool drawing = file.fileName().endsWith(QStringLiteral(".svg"), Qt::CaseInsensitive);
  if (!drawing || file.size() > MostDrawing || !file.open(QIODevice::ReadOnly)) return {};
  return {file.readAll(), {}};
}

}  // namespace torvane
