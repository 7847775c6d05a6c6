#include "ui/panes/loop/loop_colours.h"

#include <QRegularExpression>

#include "loops/operations.h"
#include "loops/parser.h"

namespace torvane {

namespace {

QTextCharFormat Coloured(const char* colour, bool bold = false) {
  QTextCharFormat format;
  format.setForeground(QColor(QLatin1String(colour)));
  if (bold) format.setFontWeight(QFont::Bold);
  return format;
}

// Names that mean something before anybody declares them.
bool IsKnown(const std::string& word) {
  static const QStringList types{QStringLiteral("Real"), QStringLiteral("Integer"),
                                 QStringLiteral("Boolean"), QStringLiteral("time")};
  static const std::vector<std::string> functions = loops::FunctionNames();
  return types.contains(QString::fromStdString(word)) ||
         std::find(functions.begin(), functions.end(), word) != functions.end();
}

}  // namespace

LoopColours::LoopColours(QTextDocument& document) : QSyntaxHighlighter(&document) {
  SetDark(false);
}

void LoopColours::SetDark(bool dark) {
  keyword_ = Coloured(dark ? "#8ab4f8" : "#0b3fa8", true);
  refused_ = Coloured(dark ? "#ff8a80" : "#b00020", true);
  known_ = Coloured(dark ? "#80cbc4" : "#00695c");
  number_ = Coloured(dark ? "#e0b0ff" : "#7b1fa2");
  string_ = Coloured(dark ? "#e6c07b" : "#8a4b08");
  comment_ = Coloured(dark ? "#9aa5a0" : "#5f6b66");
  rehighlight();
}

// To the ending, which belongs to it, or over the line's end; the place behind it. `inside` is
// behind what begins it.
qsizetype LoopColours::ColourUntil(const QString& line, qsizetype from, qsizetype inside,
                                   const QString& ending, Within within,
                                   const QTextCharFormat& format) {
  qsizetype end = line.indexOf(ending, inside);
  while (within == String && end > inside && line[end - 1] == u'\\') {
    end = line.indexOf(ending, end + 1);
  }
  if (end < 0) setCurrentBlockState(within);
  const qsizetype after = end < 0 ? line.size() : end + ending.size();
  setFormat(static_cast<int>(from), static_cast<int>(after - from), format);
  return after;
}

void LoopColours::ColourWord(const QString& word, qsizetype at) {
  const std::string text = word.toStdString();
  const bool keyword = loops::IsKeyword(text);
  if (!keyword && !IsKnown(text)) return;
  const QTextCharFormat& format = !keyword                         ? known_
                                  : loops::AdviceFor(text).empty() ? keyword_
                                                                   : refused_;
  setFormat(static_cast<int>(at), static_cast<int>(word.size()), format);
}

void LoopColours::highlightBlock(const QString& line) {
  static const QRegularExpression token(QStringLiteral(
      R"(//.*|/\*|"|'[^']*'|[A-Za-z_]\w*(?:\.\w+)*|(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?)"));
  static const QString commentEnd = QStringLiteral("*/");
  static const QString quote = QStringLiteral("\"");
  qsizetype at = 0;
  setCurrentBlockState(Code);
  if (previousBlockState() == Comment) at = ColourUntil(line, 0, 0, commentEnd, Comment, comment_);
  if (previousBlockState() == String) at = ColourUntil(line, 0, 0, quote, String, string_);
  for (;;) {
    const QRegularExpressionMatch match = token.match(line, at);
    if (!match.hasMatch()) return;
    const QString text = match.captured();
    const qsizetype from = match.capturedStart();
    at = match.capturedEnd();
    if (text.startsWith(QStringLiteral("//"))) {
      setFormat(static_cast<int>(from), static_cast<int>(text.size()), comment_);
    } else if (text == QStringLiteral("/*")) {
      at = ColourUntil(line, from, at, commentEnd, Comment, comment_);
    } else if (text == quote) {
      at = ColourUntil(line, from, at, quote, String, string_);
    } else if (text[0].isDigit() || text[0] == u'.') {
      setFormat(static_cast<int>(from), static_cast<int>(text.size()), number_);
    } else if (text[0] != u'\'') {
      ColourWord(text, from);
    }
  }
}

}  // namespace torvane
