#pragma once

#include <QRect>
#include <QRegion>
#include <array>

namespace torvane {

/// What traces cover of a screen: in each of a few columns the range of rows touched. A trace
/// touches little of the screen, and only that has to be painted anew.
class TouchedArea {
 public:
  /// Nothing of a screen of that size.
  void Clear(const QSize& screen);
  void Add(const QRect& rectangle);
  /// All of another area of the same screen.
  void Add(const TouchedArea& other);

  const QRect& Bounds() const { return bounds_; }
  QRegion Region() const;

 private:
  static constexpr int Columns = 16;
  struct Rows {
    int Low = 0;
    int High = -1;
  };

  QRect ColumnRows(int column) const;
  int LeftOf(int column) const { return column * screen_.width() / Columns; }

  QSize screen_;
  QRect bounds_;
  std::array<Rows, Columns> rows_;
};

}  // namespace torvane
