#pragma once

#include <QTableWidget>
#include <map>
#include <string>
#include <vector>

#include "study/design.h"

namespace torvane {

class ZelBenchTop;

/// What was typed where it cannot stand.
struct TableFault {
  int Row = 0;
  int Column = 0;
  std::string Text;
};

/// In the table of constants.
struct VaryFault : TableFault {};

/// A table of which some cells take numbers, and of which Space and a click switch others on and
/// off.
class TuneTable : public QTableWidget {
  Q_OBJECT

 public:
  TuneTable(const char* name, const QString& title, const QStringList& columns);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

  /// Brings the cell into view and says below it what is wrong.
  void Show(const TableFault& fault);
  void SetEditable(bool on);

 protected:
  QTableWidgetItem& AddCell(int row, int column, const std::string& text, bool editable);
  void SetText(int row, int column, const std::string& text);
  std::string Text(int row, int column) const;
};

/// The constants of a model: those that are on are varied, between the limits beside them. As long
/// as nobody has typed others, limits are a decade to either side of the present value as far as
/// the constant's go.
class VaryTable : public TuneTable {
  Q_OBJECT

 public:
  VaryTable();

  void ShowConstants(const ZelBenchTop& bench);
  /// Those of another text of the loop: what is switched on stays so, with its limits, and what has
  /// been found stays.
  void FollowText(const ZelBenchTop& bench);
  /// The present values once more, and limits about them where nobody has typed any.
  void ShowPresent(const ZelBenchTop& bench);
  void ShowBest(const std::map<std::string, std::string>& values);

  /// Of all that are on; a VaryFault where there is none, or no range between two limits.
  std::vector<StudyRange> Ranges() const;

 private:
  StudyRange RangeOf(int row) const;
  void Propose(int row, const StudyRange& range);
  bool IsProposed(int row) const;

  bool filling_ = false;
};

/// The measures of a run, each with the bounds that it is to keep.
class RequireTable : public TuneTable {
  Q_OBJECT

 public:
  RequireTable();

  /// Of the measures that say how good a run is.
  static std::vector<std::string> Captions();

  /// No bounds, and nothing found.
  void Clear();

  /// As the search reads them; a TableFault where a bound is no number.
  std::vector<std::string> Requirements() const;
  void ShowBest(const std::map<std::string, std::string>& values);

 private:
  /// Whether the value keeps the bounds of the row; empty where there are none.
  std::string Kept(int row, const std::string& value) const;
};

}  // namespace torvane
