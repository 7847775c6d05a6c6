#include "study/part_file.h"

#include <cerrno>

#include "core/files/atomic_save.h"
#include "core/files/file_fault.h"

namespace torvane {
namespace {

StudyFault FileFault(const std::string& text) {
  return {StudyFault::Kind::File, text};
}

// What a power cut leaves of a file whose size was on the disk before its bytes.
bool IsZeros(const std::string& text) {
  return text.find_first_not_of('\0') == std::string::npos;
}

}  // namespace

StudyFault PartFile::Fault(const std::string& what) const {
  return FileFault(Name() + what);
}

PartFile::PartFile(const std::string& out, const StudyIdentity& identity, const std::string& head)
    : file_(out), seals_(identity, head) {
  Open();
  const std::string text = file_.Read(MaxShareSize);
  // New, or cut off before its beginning was whole.
  const bool begun = text.size() >= seals_.Begin().size() || !seals_.Begin().starts_with(text);
  if (begun && !IsZeros(text)) {
    Take(identity, text);
    if (damaged_ > 0 || !text.ends_with('\n')) Rewrite();
    return;
  }
  if (!file_.Clear()) throw FileFault(CannotWrite(Name(), errno));
  Write(seals_.Begin());
  Flush();
  FlushFolderOf(Name());
}

void PartFile::Open() {
  const std::string fault = file_.Open();
  if (!fault.empty()) throw FileFault(fault);
  if (file_.Size() > MaxShareSize) throw Fault(" is larger than 256 MiB");
}

void PartFile::Take(const StudyIdentity& identity, const std::string& text) {
  WholeLines lines(text);
  const auto its = StudyIdentity::Parse(lines.Next());
  const std::string difference = its ? identity.Difference(*its, true) : "it names none";
  if (!difference.empty()) {
    throw Fault(" has rows of another study (" + difference +
                "); finish that one, remove the file or choose another --out");
  }
  lines.Next();
  for (std::string_view line = lines.Next(); !line.empty(); line = lines.Next()) {
    std::optional<std::string> row = seals_.Unsealed(line);
    const std::optional<std::size_t> run = row ? RunOf(*row) : std::nullopt;
    if (run) {
      rows_.emplace(*run, std::move(*row));
    } else {
      ++damaged_;
    }
  }
}

void PartFile::Rewrite() {
  std::string text = seals_.Begin();
  for (const auto& row : rows_) text += seals_.Sealed(row.second);
  const std::string fault = ReplaceFile(Name(), text);
  if (!fault.empty()) throw FileFault(fault);
  Open();
}

void PartFile::Write(const std::string& text) {
  if (!file_.Write(text)) throw FileFault(CannotWrite(Name(), errno));
  flushed_ = false;
}

void PartFile::Append(const std::string& row) {
  Write(seals_.Sealed(row));
}

void PartFile::Flush() {
  if (!flushed_ && !file_.Flush()) throw FileFault(CannotWrite(Name(), errno));
  flushed_ = true;
}

void PartFile::Remove() {
  file_.Remove();
}

}  // namespace torvane
