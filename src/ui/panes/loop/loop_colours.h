#pragma once

#include <QSyntaxHighlighter>

namespace torvane {

/// Colours a loop's text: keywords (those that loops have not, otherwise), types and functions,
/// numbers, strings and comments, on light or dark ground.
class LoopColours : public QSyntaxHighlighter {
 public:
  explicit LoopColours(QTextDocument& document);

  /// Follows the ground that the text stands on.
  void SetDark(bool dark);

 protected:
  void highlightBlock(const QString& line) override;

 private:
  /// What a line begins in that the line before did not end.
  enum Within { Code = -1, Comment = 1, String = 2 };

  qsizetype ColourUntil(const QString& line, qsizetype from, qsizetype inside,
                        const QString& ending, Within within, const QTextCharFormat& format);
  void ColourWord(const QString& word, qsizetype at);

  QTextCharFormat keyword_;
  QTextCharFormat refused_;
  QTextCharFormat known_;
  QTextCharFormat number_;
  QTextCharFormat string_;
  QTextCharFormat comment_;
};

}  // namespace torvane
