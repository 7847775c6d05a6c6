#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "instruments/analyser/analyser.h"

class QAbstractButton;
class QLineEdit;

namespace torvane {

class EditBinding;

namespace Ui {
class AnalyserForm;
}

/// Ties the controls of the axes in an analyser's window (frequency limits, scales and offsets of
/// gain and phase) to the analyser.
class AnalyserAxes : public QObject {
 public:
  /// Controls and analyser must outlive it.
  AnalyserAxes(Ui::AnalyserForm& ui, FrequencyAnalyser& analyser, QObject* parent);

  /// Shows the settings as they are.
  void Show();

 private:
  using Getter = double (FrequencyAnalyser::*)() const;
  using Setter = void (FrequencyAnalyser::*)(double);
  struct Scale {
    Getter Value;
    Setter Set;
    Getter Offset;
    Setter SetOffset;
  };
  void Bind(QLineEdit& edit, Getter get, Setter set);
  void BindButton(QAbstractButton& button, Setter set, std::function<double()> changed);
  void ConnectFrequencies();
  void ConnectNyquist();
  void ConnectScale(const char* quantity, const Scale& scale);

  Ui::AnalyserForm& ui_;
  FrequencyAnalyser& analyser_;
  std::vector<EditBinding*> edits_;
};

}  // namespace torvane
