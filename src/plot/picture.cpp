#include "plot/picture.h"

#include <utility>

#include "plot/response/plane_painter.h"
#include "plot/response/response_painter.h"
#include "plot/scope/scope_painter.h"

namespace torvane {

Picture ScopePicture(const ZelScope& scope, ScopeScreen screen, const ZelChannel* reference,
                     const TraceLook& look) {
  const auto paint = [&scope, screen = std::move(screen), reference, look](
                         QPainter& painter, const QSize& size, double ratio) {
    ScopePainter picture(scope, PaintTime::Unbounded);
    picture.Layout(size, ratio, MakeScopeLabels(scope, reference), look);
    const ScopeColours colours = ScopeColours::Light(look.Colours);
    picture.PaintBackground(painter, colours);
    picture.PaintTraces(painter, colours, screen);
    picture.PaintTags(painter, colours);
  };
  return {scope.Name(), paint};
}

Picture ResponsePicture(FrequencyAnalyser& analyser, const TraceLook& look) {
  const auto paint = [&analyser, look](QPainter& painter, const QSize& size, double ratio) {
    const ScopeColours colours = ScopeColours::Light(look.Colours);
    if (analyser.View().Plot != ResponsePlot::Bode) {
      PlanePainter plane(analyser);
      plane.Layout(size, ratio, look);
      plane.Paint(painter, colours);
      return;
    }
    ResponsePainter picture(analyser);
    picture.Layout(size, ratio, look);
    picture.Paint(painter, colours);
  };
  return {analyser.Name(), paint};
}

}  // namespace torvane
