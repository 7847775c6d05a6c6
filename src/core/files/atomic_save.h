#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// What to do with a pipe that nobody has opened for reading.
enum class Readerless { Refuse, Wait };

/// Makes the bytes the content of the file. They are written beside it under a temporary name,
/// flushed to the disk and renamed over it, so that whatever goes wrong on the way leaves the old
/// file as it was. The result is empty, or says what went wrong: "Cannot open FILE: reason" or
/// "Cannot write FILE: reason".
///
/// The file keeps its permissions, and its owner where that is possible. A symbolic link stays and
/// the file that it leads to is replaced. A file that the user may not write is refused. What is no
/// plain file (a device, a pipe) is written in place.
std::string ReplaceFile(const std::string& path, std::string_view bytes,
                        Readerless pipes = Readerless::Refuse);

class OutputFile;

/// Ends what ReplaceFile begins: a file that was written under another name in the same folder
/// takes the place of the one at the path, with its permissions.
std::string PutInPlace(const OutputFile& file, const std::string& name, const std::string& path);

/// ReplaceFile that reports a failure and gives false.
bool SaveAtomically(const std::string& path, std::string_view bytes);

/// Why ReplaceFile could not open the file at present; empty when it could. Changes nothing.
std::string WhyNotWritable(const std::string& path);

/// What the symbolic links at the path lead to, whether or not there is a file; nothing for links
/// that go round.
std::optional<std::string> FollowLinks(std::string path);

/// Makes what was done in the file's folder last: a new name, a renaming. Some file systems cannot.
void FlushFolderOf(const std::string& path);

}  // namespace torvane
