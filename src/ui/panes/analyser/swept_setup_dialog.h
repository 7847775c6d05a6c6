#pragma once

#include <QDialog>
#include <memory>

#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {

class SetupFields;

namespace Ui {
class TZelSweptDSASetupF;
}

/// The set-up of the swept-sine analyser. OK puts all of it in force at once, the plot's frequency
/// axis included, unless it is refused.
class TZelSweptDSASetupF : public QDialog {
  Q_OBJECT

 public:
  /// The analyser must outlive the dialog.
  TZelSweptDSASetupF(ZelSweptDSA& analyser, QWidget* parent);
  ~TZelSweptDSASetupF() override;

  /// Checks what is typed and says what there is to say of it, then takes it.
  void accept() override;

 private:
  std::optional<SweepSetup> Typed(bool reporting) const;
  void ShowExpected();

  ZelSweptDSA& analyser_;
  std::unique_ptr<Ui::TZelSweptDSASetupF> ui_;
  SetupFields* fields_;
};

}  // namespace torvane
