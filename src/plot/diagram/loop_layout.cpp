#include "plot/diagram/loop_layout.h"

#include <utility>

#include "core/model.h"
#include "drawing/loop_drawing.h"
#include "loops/own_loop.h"

namespace torvane {

namespace {

constexpr int MostLayoutTime = 5000;  // milliseconds
constexpr const char* TooLarge =
    "the loop is too large for a drawing: Graphviz has not laid it out in five seconds";
constexpr const char* NoProgram =
    "drawing a loop needs the program \"dot\" of Graphviz (in Debian the package graphviz), and it "
    "cannot be started";

void Begin(QProcess& layout, const std::string& dot) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
  layout.setProcessEnvironment(environment);
  layout.start(QStringLiteral("dot"), {QStringLiteral("-Tplain")});
  layout.write(QByteArray::fromStdString(dot));
  layout.closeWriteChannel();
}

// Of what Graphviz has answered in the format "plain".
DrawnModel Drawn(const drawing::LoopDrawing& loop, QProcess& layout) {
  if (layout.exitStatus() != QProcess::NormalExit || layout.exitCode() != 0) {
    const QByteArray said = layout.readAllStandardError().trimmed();
    return {{}, "Graphviz could not lay the loop out: " + said.toStdString()};
  }
  try {
    return {QByteArray::fromStdString(loop.Svg(layout.readAllStandardOutput().toStdString())), {}};
  } catch (const drawing::DrawingFault& fault) {
    return {{}, fault.what()};
  }
}

}  // namespace

DrawnModel LoopDiagram(const ZelModel& model) {
  const auto* const own = dynamic_cast<const loops::OwnLoop*>(&model);
  if (!own) return {};
  try {
    const drawing::LoopDrawing loop(own->Text());
    QProcess layout;
    Begin(layout, loop.BareDotText());
    if (!layout.waitForStarted()) return {{}, NoProgram};
    if (layout.waitForFinished(MostLayoutTime)) return Drawn(loop, layout);
    layout.kill();
    layout.waitForFinished();
    return {{}, TooLarge};
  } catch (const drawing::DrawingFault& fault) {
    return {{}, fault.what()};
  }
}

LoopLayout::LoopLayout() {
  latest_.setSingleShot(true);
  QObject::connect(&latest_, &QTimer::timeout, [this] { Finish(TooLarge); });
}

LoopLayout::~LoopLayout() {
  Abandon();
}

void LoopLayout::Start(const ZelModel& model, Done done) {
  Abandon();
  const auto* const own = dynamic_cast<const loops::OwnLoop*>(&model);
  if (!own) return done({});
  std::string dot;
  try {
    loop_ = std::make_unique<drawing::LoopDrawing>(own->Text());
    dot = loop_->BareDotText();
  } catch (const drawing::DrawingFault& fault) {
    return done({{}, fault.what()});
  }
  done_ = std::move(done);
  process_ = new QProcess;
  QObject::connect(process_, &QProcess::finished, &latest_, [this] { Finish({}); });
  QObject::connect(process_, &QProcess::errorOccurred, &latest_,
                   [this](QProcess::ProcessError error) {
                     if (error == QProcess::FailedToStart) Finish(NoProgram);
                   });
  latest_.start(MostLayoutTime);
  Begin(*process_, dot);
}

void LoopLayout::Finish(const std::string& fault) {
  const DrawnModel drawn = fault.empty() ? Drawn(*loop_, *process_) : DrawnModel{{}, fault};
  const Done done = std::move(done_);
  Abandon();
  done(drawn);
}

// It may be the process that has called.
void LoopLayout::Abandon() {
  latest_.stop();
  QProcess* const left = std::exchange(process_, nullptr);
  if (!left) return;
  left->disconnect(&latest_);
  left->kill();
  left->waitForFinished();
  left->deleteLater();
}

}  // namespace torvane
