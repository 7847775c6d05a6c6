#include "plot/diagram/loop_layout.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <memory>
#include <string>

#include "loops/loop_file.h"
#include "loops/own_loop.h"
#include "models/catalogue.h"

namespace torvane {
namespace {

std::unique_ptr<ZelModel> Loop(const char* name) {
  return loops::MakeLoop(loops::ReadLoopFile(std::string(TORVANE_SHARE "/loops/") + name, {}));
}

// Another model is opened while the diagram of one is laid out.
TEST(LoopLayout, GivesUpWhatGoesOnForAnotherModel) {
  const auto left = [](const DrawnModel&) { ADD_FAILURE() << "told of a model that was left"; };
  const auto first = Loop("AnalogPI.mo");
  const auto second = Loop("DigitalPI.mo");
  LoopLayout layout;
  int told = 0;
  layout.Start(*first, left);
  layout.Start(*LoadModel(0),
               [&](const DrawnModel& drawn) { told += drawn.Svg.isEmpty() ? 1 : 9; });
  EXPECT_EQ(told, 1);
  EXPECT_FALSE(layout.IsRunning());
  layout.Start(*first, left);
  DrawnModel drawn;
  layout.Start(*second, [&](const DrawnModel& made) { drawn = made; });
  while (layout.IsRunning()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(drawn.Fault, "");
  EXPECT_EQ(drawn.Svg, LoopDiagram(*second).Svg);
}

}  // namespace
}  // namespace torvane
