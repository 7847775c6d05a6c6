#pragma once

#include <QComboBox>
#include <QLabel>
#include <string>
#include <vector>

#include "instruments/analyser/margins.h"
#include "plot/response/response_painter.h"
#include "ui/panes/read_out_window.h"

namespace torvane {

/// What is read off the trace that an analyser's cursors read: of a closed loop bandwidth and
/// peaking, or the margins of the open loop that belongs to it while the view shows that; of an
/// open loop its margins, at every crossing. What it is taken for can be chosen.
class MarginsWindow : public ReadOutWindow {
  Q_OBJECT

 public:
  /// The analyser must outlive the window.
  MarginsWindow(FrequencyAnalyser& analyser, QWidget* parent);

  /// Reads the trace as it is now.
  void ReadTrace();
  /// Where on the plot the figures were read that belong to the trace itself.
  const std::vector<ResponseMark>& Marks() const { return marks_; }

 signals:
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// What is read of the trace and of theory, each where there is one.
  struct Row {
    std::string Name;
    const char* Unit;
    std::array<std::optional<Margins::Reading>, 2> Of;
  };

  void AddMargins(const Margins& margins);
  void AddBandwidths(const Margins& margins);
  void AddCrossings(const Margins& margins, const std::string& condition);
  std::vector<std::string> ReasonsFor(int slot);
  void ReadTheory();
  void ShowRows();
  void GiveRemarksRoom();
  void ShowRemarks(const std::vector<std::string>& reasons);
  void ShowChoice(bool closed);
  void MoveMarksToTrace(int slot);
  void ShowWholeColumns();
  void AddRow(const std::string& name, const char* unit, const Margins::Reading& reading);
  void AddMark(const ResponseMark& mark);

  FrequencyAnalyser& analyser_;
  MarginReader reader_;
  QComboBox* as_;
  QLabel* trust_;
  double highest_ = 0.0;  // frequency at which something was read, Hz
  std::vector<Row> rows_;
  std::size_t column_ = 0;      // of theory: 1
  std::optional<bool> closed_;  // what the trace was taken for
  std::vector<ResponseMark> marks_;
};

}  // namespace torvane
