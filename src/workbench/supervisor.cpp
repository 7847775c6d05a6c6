#include "workbench/supervisor.h"

#include "workbench/work_fault.h"

namespace torvane {
namespace {

const char* Label(MessageKind kind) {
  switch (kind) {
    case MessageKind::Note:
      return "Note";
    case MessageKind::Warning:
      return "Warning";
    default:
      return "Error";
  }
}

}  // namespace

void Supervisor::Show(MessageKind kind, const std::string& text) {
  ++reports_;
  if (kind != MessageKind::Note && kind != MessageKind::Warning) ++errors_;
  Report(Label(kind), place_ + text);
}

bool Supervisor::Ask(MessageKind kind, const std::string& text) {
  ++reports_;
  Report(Label(kind), place_ + text + (answerOk_ ? " (OK)" : " (Cancel; --yes answers OK)"));
  return answerOk_;
}

void Supervisor::ApplySettings(const std::function<void()>& apply) {
  const int before = errors_;
  apply();
  if (errors_ > before) throw UsageError("");
}

}  // namespace torvane
