#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// What a session that is kept over a crash has of own loops, beside the records of a model file:
/// texts that may stand in no file. As lines "LoopText,...", "DraftText,..." and so on they are
/// passed over where a model file is read.
struct KeptLoop {
  std::string Text;   ///< the one that the model was made of; empty for a built-in model
  QString DraftPath;  ///< of the text that was being written; empty when that was saved
  QString Draft;
  std::optional<QString> DraftFile;  ///< what its file held when it was read or written last

  std::string Records() const;
  /// What such a text has of them.
  static KeptLoop In(std::string_view text);
};

}  // namespace torvane
