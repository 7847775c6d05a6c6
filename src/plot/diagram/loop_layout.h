#pragma once

#include <QProcess>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include "plot/diagram/loop_diagram.h"

namespace torvane {

namespace drawing {
class LoopDrawing;
}

/// An own loop's diagram, made from its equations; neither drawing nor fault for another model. The
/// layout takes Graphviz, a program of its own, some hundredths of a second, in which this waits;
/// it is stopped after five seconds.
DrawnModel LoopDiagram(const ZelModel& model);

/// Draws one while the message loop goes on.
class LoopLayout {
 public:
  using Done = std::function<void(const DrawnModel&)>;

  LoopLayout();
  ~LoopLayout();

  /// Begins with a loop; what goes on for another one is given up. Tells the drawing, or why there
  /// is none, as LoopDiagram does, maybe before it returns.
  void Start(const ZelModel& model, Done done);
  bool IsRunning() const { return process_ != nullptr; }
  /// Nothing is told any more.
  void Abandon();

 private:
  void Finish(const std::string& fault);

  std::unique_ptr<drawing::LoopDrawing> loop_;
  Done done_;
  QProcess* process_ = nullptr;
  QTimer latest_;
};

}  // namespace torvane
