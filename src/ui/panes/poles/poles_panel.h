#pragma once

#include <QDockWidget>
#include <QElapsedTimer>
#include <QTimer>
#include <memory>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QMainWindow;
class QMenu;
class QTableWidget;

namespace torvane {

class LiveTheory;
class PoleBox;
class RootLocus;
class Session;
struct Root;
struct TraceLook;

/// The poles of the session's model, in the s plane or in the z plane of a loop that samples: they
/// move with the constants. On request the root locus over one constant lies behind them. A panel
/// docked beside the instruments, which the user can take out.
class PolesPanel : public QDockWidget {
  Q_OBJECT

 public:
  /// Session and theory must outlive it.
  PolesPanel(Session& session, LiveTheory& theory, QMainWindow& dock);
  ~PolesPanel() override;

  /// Adds what opens it.
  void AddTo(QMenu& menu);
  void SetLook(const TraceLook& look);

  /// Opens it with the root locus over that constant; over none without a name.
  void ShowLocus(const std::string& constant);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void AddControls();
  void AddExports();
  void FillLoci(QMenu& menu);
  void Place();
  void TakeModel();
  void Follow();
  void BeginLocus();
  void GoOn();
  void ShowPicture();
  void ShowPoles(const std::vector<Root>& poles);
  void ShowPole(int pole);
  std::string Csv() const;

  QMainWindow& dock_;
  Session& session_;
  LiveTheory& theory_;
  QComboBox* constants_;
  PoleBox* box_;
  QTableWidget* table_;
  QLabel* verdict_;
  std::vector<int> rows_;  // of the poles, in the table
  std::unique_ptr<RootLocus> locus_;
  QTimer goOn_;
  QElapsedTimer shown_;  // since the picture was made
  bool placed_ = false;
};

}  // namespace torvane
