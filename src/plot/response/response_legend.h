#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <array>
#include <string>
#include <vector>

#include "instruments/analyser/analyser.h"
#include "plot/scope_colours.h"
#include "plot/trace_painter.h"

namespace torvane {

/// Of a slot's trace, pixels of design: theory is a thin line.
inline double ResponseWidth(int slot) {
  return slot == FrequencyAnalyser::TheorySlot ? 1.0 : 1.6;
}

/// How one slot's trace is drawn.
TracePen ResponsePen(const ScopeColours& colours, const TraceLook& look, int slot);

/// A mark of the memory in that slot, filled, in the painter's pen.
void PaintMemoryMark(QPainter& painter, const QColor& fill, int slot, const QPointF& at,
                     double ratio);

/// The slots in the order in which they are painted: theory lies behind all, the current
/// measurement on top.
inline constexpr std::array PaintOrder{5, 4, 3, 2, 1, 0};
static_assert(PaintOrder.front() == FrequencyAnalyser::TheorySlot);

/// What stands below a plot of responses: the signals, the axes, and which trace is which.
class ResponseLegend {
 public:
  explicit ResponseLegend(const FrequencyAnalyser& analyser) : analyser_(analyser) {}

  /// The slot's trace is on the plot.
  static bool IsDrawn(const FrequencyAnalyser& analyser, int slot) {
    return analyser.TraceAt(slot).Shown && analyser.HasData(slot);
  }

  static int DrawnCount(const FrequencyAnalyser& analyser);

  /// Places it along the lower edge of a picture; gives what it takes of the height.
  int Layout(const QSize& size, double ratio, const QFont& font, const TraceLook& look);
  void Paint(QPainter& painter, const ScopeColours& colours) const;

 private:
  struct Entry {
    int Slot = -1;  ///< with a sample of this trace before the text
    std::string Text;
    QRect Place;
  };

  bool Unavailable(int slot) const;
  std::string PairText() const;
  std::string TraceText(int slot) const;
  void MakeEntries();
  void PaintSample(QPainter& painter, const ScopeColours& colours, int slot,
                   const QRect& place) const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  const FrequencyAnalyser& analyser_;
  double ratio_ = 1.0;
  QFont font_;
  TraceLook look_;
  std::vector<Entry> entries_;
};

}  // namespace torvane
