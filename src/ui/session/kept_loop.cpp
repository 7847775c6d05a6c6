#include "ui/session/kept_loop.h"

#include "core/files/model_file_lines.h"

namespace torvane {

namespace {

constexpr std::string_view TextKeyword = "LoopText,";
constexpr std::string_view PathKeyword = "DraftFile,";
constexpr std::string_view DraftKeyword = "DraftText,";
constexpr std::string_view HeldKeyword = "DraftFileText,";

std::string Lines(std::string_view keyword, std::string_view text) {
  std::string lines;
  std::size_t begin = 0;
  while (!text.empty() && begin != std::string_view::npos) {
    const std::size_t end = text.find('\n', begin);
    lines.append(keyword).append(text.substr(begin, end - begin)).append("\n");
    begin = end == std::string_view::npos ? end : end + 1;
  }
  return lines;
}

void AddLine(std::optional<std::string>& text, const std::string& line) {
  text = text ? *text + "\n" + line : line;
}

}  // namespace

std::string KeptLoop::Records() const {
  std::string records = Lines(TextKeyword, Text);
  if (DraftPath.isEmpty()) return records;
  return records + Lines(PathKeyword, DraftPath.toStdString()) +
         Lines(DraftKeyword, Draft.toStdString()) +
         Lines(HeldKeyword, DraftFile.value_or(QString()).toStdString());
}

KeptLoop KeptLoop::In(std::string_view text) {
  KeptLoop kept;
  std::optional<std::string> loop;
  std::optional<std::string> draft;
  std::optional<std::string> held;
  LineReader lines(text);
  for (std::string line; lines.Next(line);) {
    if (line.starts_with(TextKeyword)) AddLine(loop, line.substr(TextKeyword.size()));
    if (line.starts_with(DraftKeyword)) AddLine(draft, line.substr(DraftKeyword.size()));
    if (line.starts_with(HeldKeyword)) AddLine(held, line.substr(HeldKeyword.size()));
    if (line.starts_with(PathKeyword)) {
      kept.DraftPath = QString::fromStdString(line.substr(PathKeyword.size()));
    }
  }
  kept.Text = loop.value_or("");
  kept.Draft = QString::fromStdString(draft.value_or(""));
  if (held) kept.DraftFile = QString::fromStdString(*held);
  return kept;
}

}  // namespace torvane
