#include "cli/io/result_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "core/files/atomic_save.h"
#include "core/files/file_fault.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

constexpr std::size_t PieceSize = 65536;
constexpr std::chrono::milliseconds LongestDelay(500);
// Of a run: its captions, with units or without, or its first row in JSON.
constexpr std::array<std::string_view, 3> RunBegins{"Time,", "Time ", "[\n{\"T"};

int OpenStream(const std::string& path, bool streamed) {
  if (!streamed) return -1;
  if (path.empty()) return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, NewFileMode);
}

}  // namespace

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code failure;
  if (std::filesystem::equivalent(a, b, failure)) return true;
  const auto place = [&](const std::string& path) {
    const auto target = std::filesystem::absolute(FollowLinks(path).value_or(path), failure);
    return std::filesystem::weakly_canonical(target.parent_path(), failure) / target.filename();
  };
  return place(a) == place(b);
}

namespace {

void CheckWritable(const std::string& path) {
  const std::string fault = path.empty() ? "" : WhyNotWritable(path);
  if (!fault.empty()) throw FileError(fault);
}

}  // namespace

ResultFile::ResultFile(const std::string& path, Delivery delivery)
    : path_(path),
      streamed_(delivery == Delivery::Streamed || path.empty()),
      file_(OpenStream(path, streamed_ && !IsReplaced(path))),
      passedOn_(std::chrono::steady_clock::now()) {
  if (IsReplaced(path)) {
    CheckWritable(path);
    if (streamed_) BeginGrowing();
  } else if (streamed_ && !file_.IsOpen()) {
    throw FileError(CannotOpen(Name(), errno));
  } else if (!streamed_) {
    CheckWritable(path);
  }
}

// Rows of an end before time give way to those of the next attempt; other files do not.
void ResultFile::BeginGrowing() {
  growing_.emplace(path_);
  const std::string fault = growing_->Open();
  if (!fault.empty()) throw FileError(fault);
  const std::string begin = growing_->Read(RunBegins.front().size());
  if (!begin.empty() && std::ranges::find(RunBegins, begin) == RunBegins.end()) {
    throw FileError(growing_->Name() + " has no rows of a run; remove it or choose another --out");
  }
  if (!growing_->Clear()) throw FileError(CannotWrite(growing_->Name(), errno));
}

std::string ResultFile::Name() const {
  return path_.empty() ? "standard output" : path_;
}

ResultFile::~ResultFile() {
  if (file_.IsOpen() || growing_) PassOn();
}

std::string ResultFile::KeepRows() {
  if (!growing_) return {};
  PassOn();
  return "; the rows so far are in " + growing_->Name();
}

void ResultFile::Write(std::string_view lines) {
  pending_ += lines;
  if (!streamed_) return;
  if (pending_.size() < PieceSize && std::chrono::steady_clock::now() - passedOn_ < LongestDelay) {
    return;
  }
  if (!PassOn()) throw FileError(CannotWrite(Name(), errno));
}

void ResultFile::Close() {
  if (!streamed_) {
    const std::string fault = ReplaceFile(path_, pending_, Readerless::Wait);
    if (!fault.empty()) throw FileError(fault);
    return;
  }
  if (!PassOn()) throw FileError(CannotWrite(Name(), errno));
  if (growing_) {
    const std::string fault = growing_->MoveInPlace();
    if (!fault.empty()) throw FileError(fault);
    growing_.reset();
  } else if (!file_.Close()) {
    throw FileError(CannotWrite(Name(), errno));
  }
}

bool ResultFile::PassOn() {
  const std::string piece = std::exchange(pending_, {});
  passedOn_ = std::chrono::steady_clock::now();
  return growing_ ? growing_->Write(piece) : file_.Write(piece);
}

bool IsReplaced(const std::string& path) {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  return !path.empty() && (!std::filesystem::exists(status) || is_regular_file(status));
}

void CheckOutputs(const std::string& out, const std::string& picture, const std::string& input) {
  if (!out.empty() && !picture.empty() && SameFile(out, picture)) {
    throw UsageError("--out and --picture name one file, \"" + picture + "\"");
  }
  for (const std::string& output : {out, picture}) {
    if (input.empty() || output.empty() || !SameFile(output, input)) continue;
    throw UsageError("\"" + input + "\" is read; it cannot be written as well");
  }
  CheckWritable(out);
  CheckWritable(picture);
}

}  // namespace torvane::cli
