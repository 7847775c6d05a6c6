#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "instruments/fft/fft_analyser.h"
#include "ui/widgets/number_field.h"

class QAbstractButton;

namespace torvane {

namespace Ui {
class TZelXferSetupF;
}

/// The set-up of the FFT analyser's record. OK puts all of it in force at once, unless it is
/// refused.
class TZelXferSetupF : public QDialog {
  Q_OBJECT

 public:
  /// The analyser must outlive the dialog.
  TZelXferSetupF(ZelXfer& analyser, QWidget* parent);
  ~TZelXferSetupF() override;

  /// Checks what is typed and says what there is to say of it, then takes it.
  void accept() override;

 private:
  struct Number {
    NumberField Field;
    double FftSetup::*Value;
  };
  using Step = double (*)(double value);

  void ConnectStep(QAbstractButton& button, NumberField& field, Step step);
  std::optional<FftSetup> Typed(bool reporting) const;
  void ShowActiveTime();

  ZelXfer& analyser_;
  std::unique_ptr<Ui::TZelXferSetupF> ui_;
  std::vector<Number> numbers_;
  NumberField order_;
};

}  // namespace torvane
