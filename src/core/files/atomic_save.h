#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// Makes the bytes the content of the file. They are written beside it under a temporary name,
/// flushed to the disk and renamed over it, so that whatever goes wrong on the way leaves the old
/// file as it was; a failure is reported and gives false.
///
/// The file keeps its permissions, and its owner where that is possible. A symbolic link stays and
/// the file that it leads to is replaced. A file that the user may not write is refused. What is no
/// plain file (a device, a pipe) is written in place.
bool SaveAtomically(const std::string& path, std::string_view bytes);

}  // namespace torvane
