#pragma once

#include <QObject>
#include <vector>

#include "instruments/scope/scope.h"

namespace torvane {

class EditBinding;

namespace Ui {
class ScopeWindow;
}

/// Ties the trigger's controls in a scope's window, all but the list of sources, to the trigger:
/// what is changed goes to its setters. A check box enables its edit.
class TriggerControls : public QObject {
 public:
  /// Controls and scope must outlive it.
  TriggerControls(Ui::ScopeWindow& ui, ZelScope& scope, QObject* parent);

  /// Shows the settings as they are.
  void Show();

 private:
  void ConnectSwitches();
  void BindNumbers();

  Ui::ScopeWindow& ui_;
  ZelScope& scope_;
  std::vector<EditBinding*> edits_;
};

}  // namespace torvane
