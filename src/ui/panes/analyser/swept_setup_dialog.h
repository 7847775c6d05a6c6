#pragma once

#include <QDialog>
#include <memory>

#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {

class SetupFields;

namespace Ui {
class SweptSetupDialog;
}

/// The set-up of the swept-sine analyser. OK puts all of it in force at once, the plot's frequency
/// axis included, unless it is refused.
class SweptSetupDialog : public QDialog {
  Q_OBJECT

 public:
  /// The analyser must outlive the dialog.
  SweptSetupDialog(ZelSweptDSA& analyser, QWidget* parent);
  ~SweptSetupDialog() override;

  /// Checks what is typed and says what there is to say of it, then takes it.
  void accept() override;

 private:
  std::optional<SweepSetup> Typed(bool reporting) const;
  void ShowExpected();

  ZelSweptDSA& analyser_;
  std::unique_ptr<Ui::SweptSetupDialog> ui_;
  SetupFields* fields_;
};

}  // namespace torvane
