#pragma once

#include <QDialog>
#include <memory>

#include "instruments/fft/fft_analyser.h"

namespace torvane {

class SetupFields;

namespace Ui {
class XferSetupDialog;
}

/// The set-up of the FFT analyser's record. OK puts all of it in force at once, unless it is
/// refused.
class XferSetupDialog : public QDialog {
  Q_OBJECT

 public:
  /// The analyser must outlive the dialog.
  XferSetupDialog(ZelXfer& analyser, QWidget* parent);
  ~XferSetupDialog() override;

  /// Checks what is typed and says what there is to say of it, then takes it.
  void accept() override;

 private:
  std::optional<FftSetup> Typed(bool reporting) const;
  void ShowActiveTime();

  ZelXfer& analyser_;
  std::unique_ptr<Ui::XferSetupDialog> ui_;
  SetupFields* fields_;
};

}  // namespace torvane
