#pragma once

#include <map>
#include <string>

#include "core/undo.h"

namespace torvane {

class Session;

/// Gives several constants of the session's model new values in one change, which one undo takes
/// back.
class ConstantGroup : public Undoable {
 public:
  /// Both the session and this must live as long as the model's history.
  explicit ConstantGroup(const Session& session) : session_(session) {}

  /// Sets the constants of those names that there are, within their limits. The caption is that of
  /// the undo; nothing is recorded where no value changes.
  void Set(const std::map<std::string, double>& values, const std::string& caption);

  void Undo(const UndoEntry& entry) override;
  void Redo(const UndoEntry& entry) override;

 private:
  void Restore(const std::string& values);

  const Session& session_;
};

}  // namespace torvane
