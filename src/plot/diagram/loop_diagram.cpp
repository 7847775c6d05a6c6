#include "plot/diagram/loop_diagram.h"

#include <QFile>
#include <QFileInfo>

#include "core/model.h"
#include "plot/qt_text.h"

// Resources of a static library are linked in only when they are asked for, outside any namespace.
static void InitDiagrams() {
  Q_INIT_RESOURCE(torvane_diagrams);
}

namespace torvane {

// The models without a picture have a description.
DrawnModel BuiltInDrawing(const ZelModel& model) {
  InitDiagrams();
  const std::string& picture = model.PictureFile();
  const std::string& of = picture.empty() ? model.TextFile() : picture;
  QFile file(QStringLiteral(":/diagrams/%1.svg").arg(QFileInfo(QtText(of)).completeBaseName()));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return {file.readAll(), {}};
}

}  // namespace torvane
