#pragma once

#include <QPainter>
#include <QSize>
#include <functional>
#include <string>

#include "plot/scope_colours.h"

namespace torvane {

class FrequencyAnalyser;
class ZelChannel;
class ZelScope;
struct ScopeScreen;

/// What a plot shows, to be painted anywhere and at any resolution.
struct Picture {
  std::string Title;
  /// Fills an area of that size at the painter's origin; `ratio` of its pixels make one pixel of
  /// text and line design.
  std::function<void(QPainter& painter, const QSize& size, double ratio)> Paint;
};

/// The scope with that screen, as on paper: light, with all scales. The left axis shows the values
/// of `reference`, or of the first displayed channel. The scope must outlive the picture.
Picture ScopePicture(const ZelScope& scope, ScopeScreen screen, const ZelChannel* reference,
                     const TraceLook& look = {});

/// The analyser's responses in the view that it shows; the analyser must outlive the picture.
Picture ResponsePicture(FrequencyAnalyser& analyser, const TraceLook& look = {});

}  // namespace torvane
