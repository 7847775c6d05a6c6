#include "plot/diagram/loop_diagram.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include "core/model.h"
#include "drawing/loop_drawing.h"
#include "loops/own_loop.h"
#include "plot/qt_text.h"

// Resources of a static library are linked in only when they are asked for, outside any namespace.
static void InitDiagrams() {
  Q_INIT_RESOURCE(torvane_diagrams);
}

namespace torvane {

namespace {

constexpr int MostLayoutTime = 5000;  // milliseconds
constexpr const char* LayoutProgram = "dot";

// What Graphviz answers in the format "plain".
std::string LaidOut(const std::string& dot) {
  QProcess layout;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
  layout.setProcessEnvironment(environment);
  layout.start(QLatin1String(LayoutProgram), {QStringLiteral("-Tplain")});
  if (!layout.waitForStarted()) {
    throw drawing::DrawingFault(
        "drawing a loop needs the program \"dot\" of Graphviz (in Debian the package graphviz), "
        "and it cannot be started");
  }
  layout.write(QByteArray::fromStdString(dot));
  layout.closeWriteChannel();
  if (!layout.waitForFinished(MostLayoutTime)) {
    layout.kill();
    layout.waitForFinished();
    throw drawing::DrawingFault(
        "the loop is too large for a drawing: Graphviz has not laid it "
        "out in five seconds");
  }
  if (layout.exitStatus() != QProcess::NormalExit || layout.exitCode() != 0) {
    throw drawing::DrawingFault("Graphviz could not lay the loop out: " +
                                layout.readAllStandardError().trimmed().toStdString());
  }
  return layout.readAllStandardOutput().toStdString();
}

}  // namespace

// The models without a picture have a description.
DrawnModel BuiltInDrawing(const ZelModel& model) {
  InitDiagrams();
  const std::string& picture = model.PictureFile();
  const std::string& of = picture.empty() ? model.TextFile() : picture;
  QFile file(QStringLiteral(":/diagrams/%1.svg").arg(QFileInfo(QtText(of)).completeBaseName()));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return {file.readAll(), {}};
}

DrawnModel LoopDiagram(const ZelModel& model) {
  const auto* const own = dynamic_cast<const loops::OwnLoop*>(&model);
  if (!own) return {};
  try {
    const drawing::LoopDrawing loop(own->Text());
    return {QByteArray::fromStdString(loop.Svg(LaidOut(loop.BareDotText()))), {}};
  } catch (const drawing::DrawingFault& fault) {
    return {{}, fault.what()};
  }
}

}  // namespace torvane
