#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <QStringList>
#include <optional>
#include <vector>

#include "instruments/scope/scope.h"
#include "plot/scope_colours.h"

namespace torvane {

/// The cursors of a scope's screen and what they read, beside them: at each its time, counted from
/// the screen's left edge, and one channel's value, and with two of them the differences and the
/// inverse of the time between.
class CursorPainter {
 public:
  explicit CursorPainter(const ZelScope& scope) : scope_(scope) {}

  /// The screen's place in the picture; `ratio` pixels make one of design.
  void Layout(const QRect& plate, double ratio);

  /// What stands beside a cursor, and where.
  struct Note {
    QStringList Lines;
    QRect Box;

    bool operator==(const Note&) const = default;
  };

  /// Reads the cursors on a screen; the values are the channel's, when it is displayed. True when
  /// they read something else than before.
  bool Read(const ScopeScreen& screen, const ZelChannel* channel);
  /// One for each cursor that the sweep has come to, and one for the differences between two.
  const std::vector<Note>& Notes() const { return notes_; }

  /// The part of the picture that the readings stand on.
  QRect Area() const;

  void Paint(QPainter& painter, const ScopeColours& colours) const;

 private:
  struct Reading {
    int X;  // of the cursor
    double Time;
    double Value;
  };

  std::optional<Reading> ReadAt(int x, const ScopeScreen& screen,
                                std::optional<std::size_t> channel);
  void NoteReadings(const std::vector<Reading>& readings, const Variable* signal);
  void PlaceNote(QStringList lines, int x, bool atTop);
  void PaintNote(QPainter& painter, const ScopeColours& colours, const Note& note) const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  const ZelScope& scope_;
  QRect plate_;
  double ratio_ = 1.0;
  QFont font_;
  std::vector<Note> notes_;
  std::vector<QPoint> points_;  // of the trace, at the cursors
};

}  // namespace torvane
