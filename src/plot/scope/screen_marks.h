#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <optional>
#include <vector>

#include "plot/scope/scope_labels.h"
#include "plot/scope_colours.h"

namespace torvane {

/// One of the marks around a scope's screen.
struct ScreenMark {
  enum class Kind { Zero, Tag, Level, Position };

  Kind Is = Kind::Zero;
  std::size_t Channel = 0;  ///< of a zero or a tag; index in the scope's channels

  bool operator==(const ScreenMark&) const = default;
};

/// Tops of flags as near to the wanted centres as they can be without covering each other, within
/// low..high; in the order given.
std::vector<int> SpreadFlags(const std::vector<int>& centres, int height, int low, int high);

/// The marks around a scope's screen: to its left each trace's zero and the trigger's level, to its
/// right a tag with number and name where each trace ends, above it the trigger's position. Each is
/// a flag whose tip points at the place meant; flags that would cover each other stand apart.
///
/// All lengths are pixels of the painter; `ratio` of them make one of design.
class ScreenMarks {
 public:
  /// Room that they need beside a screen: to its left, above it, and to its right with names in the
  /// tags or without.
  static int LeftRoom(double ratio);
  static int TopRoom(double ratio);
  static int TagRoom(const ScopeLabels& labels, bool names, const QFont& font, double ratio);

  /// Finds the places around the screen `plate`.
  void Layout(const QRect& plate, const ScopeLabels& labels, bool names, const QFont& font,
              double ratio);

  void PaintZeros(QPainter& painter, const ScopeColours& colours) const;
  void PaintTrigger(QPainter& painter, const ScopeColours& colours) const;
  /// Tags at the heights on the screen at which the traces end, in channel order; a trace without
  /// points has none.
  void PaintTags(QPainter& painter, const ScopeColours& colours,
                 const std::vector<std::optional<int>>& ends);

  /// The area of all tags.
  QRect TagArea() const { return tagArea_; }
  /// Of the trigger's position mark, when it has one.
  QRect PositionFlag() const;

  /// The mark at that point of the picture.
  std::optional<ScreenMark> At(const QPoint& point) const;

 private:
  struct Flag {
    QRect Body;
    QPoint Tip;
    ScreenMark Mark;
    int Colour = -1;
    QString Text;
  };

  void PlaceZeros(const ScopeLabels& labels);
  void PlacePosition(const TriggerMark& trigger);
  QString TagText(const TraceMark& trace) const;
  int YOf(double divisions) const;
  void PaintFlag(QPainter& painter, const ScopeColours& colours, const Flag& flag) const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  std::vector<TraceMark> traces_;
  QRect plate_;
  QFont font_;
  double ratio_ = 1.0;
  bool names_ = false;
  QRect tagArea_;
  std::vector<Flag> zeros_;  // and the trigger's level, when there is one
  std::vector<Flag> tags_;   // as last painted
  std::optional<Flag> position_;
};

}  // namespace torvane
