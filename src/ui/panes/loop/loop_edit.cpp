#include "ui/panes/loop/loop_edit.h"

#include <QFontDatabase>
#include <QHelpEvent>
#include <QPainter>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolTip>
#include <algorithm>

#include "plot/qt_text.h"
#include "ui/panes/loop/loop_colours.h"

namespace torvane {

namespace {

constexpr int NumbersEdge = 4;  // pixels at either side of the numbers
constexpr int LeastDigits = 3;
const QString LoopIndent = QStringLiteral("  ");
const QString ErrorSign = QStringLiteral("\u00d7");
const QString WarningSign = QStringLiteral("!");

QColor ErrorColour(bool dark) {
  return dark ? QColor(0xff, 0x8a, 0x80) : QColor(0xb0, 0x00, 0x20);
}

QColor WarningColour(bool dark) {
  return dark ? QColor(0xff, 0xc1, 0x07) : QColor(0x9a, 0x67, 0x00);
}

bool OnDark(const QWidget& widget) {
  return widget.palette().color(QPalette::Base).lightness() < 128;
}

bool IsKey(const QKeyEvent& key, int code) {
  return key.modifiers() == Qt::ControlModifier && key.key() == code;
}

bool IsApply(const QKeyEvent& key) {
  return IsKey(key, Qt::Key_Return) ||
         (key.modifiers() == (Qt::ControlModifier | Qt::KeypadModifier) &&
          key.key() == Qt::Key_Enter);
}

}  // namespace

/// The strip with the line numbers.
class LoopEdit::Numbers : public QWidget {
 public:
  explicit Numbers(LoopEdit& edit) : QWidget(&edit), edit_(edit) {}

 protected:
  void paintEvent(QPaintEvent* event) override { edit_.PaintNumbers(*event); }
  void wheelEvent(QWheelEvent* event) override { edit_.wheelEvent(event); }

 private:
  LoopEdit& edit_;
};

LoopEdit::LoopEdit(QWidget* parent)
    : QPlainTextEdit(parent), numbers_(new Numbers(*this)), colours_(new LoopColours(*document())) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(this->font().pointSizeF());
  setFont(font);
  setLineWrapMode(QPlainTextEdit::NoWrap);
  connect(this, &QPlainTextEdit::blockCountChanged, this, &LoopEdit::PlaceNumbers);
  connect(this, &QPlainTextEdit::updateRequest, numbers_, [this] { numbers_->update(); });
  TakeGround();
  PlaceNumbers();
}

void LoopEdit::Replace(const QString& text) {
  const int line = textCursor().blockNumber();
  QTextCursor all(document());
  all.select(QTextCursor::Document);
  all.insertText(text);
  GoTo({std::min(line, document()->blockCount() - 1) + 1, 1});
}

QTextCursor LoopEdit::At(loops::Place place) const {
  const QTextBlock block = document()->findBlockByNumber(place.Line - 1);
  QTextCursor cursor(block.isValid() ? block : document()->lastBlock());
  const int column = std::clamp(place.Column - 1, 0, cursor.block().length() - 1);
  cursor.setPosition(cursor.block().position() + column);
  return cursor;
}

void LoopEdit::GoTo(loops::Place place) {
  setTextCursor(At(place));
  ensureCursorVisible();
}

void LoopEdit::SetProblems(const std::vector<loops::Problem>& problems) {
  problems_ = problems;
  MarkProblems();
  numbers_->update();
}

const loops::Problem* LoopEdit::ProblemOf(int line) const {
  const loops::Problem* found = nullptr;
  for (const loops::Problem& problem : problems_) {
    if (problem.Where.Line != line) continue;
    if (!found || (found->Warning && !problem.Warning)) found = &problem;
  }
  return found;
}

void LoopEdit::MarkProblems() {
  QList<QTextEdit::ExtraSelection> marks;
  const bool dark = OnDark(*this);
  for (const loops::Problem& problem : problems_) {
    QTextEdit::ExtraSelection mark;
    mark.cursor = At(problem.Where);
    mark.cursor.movePosition(QTextCursor::EndOfWord, QTextCursor::KeepAnchor);
    if (!mark.cursor.hasSelection()) {
      // Behind a line's end there is nothing to underline.
      mark.cursor.movePosition(mark.cursor.atBlockEnd() ? QTextCursor::Left : QTextCursor::Right,
                               QTextCursor::KeepAnchor);
    }
    mark.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    mark.format.setUnderlineColor(problem.Warning ? WarningColour(dark) : ErrorColour(dark));
    marks << mark;
  }
  setExtraSelections(marks);
}

int LoopEdit::NumbersWidth() const {
  const int digits = static_cast<int>(QString::number(document()->blockCount()).size());
  const QFontMetrics metrics = fontMetrics();
  return 2 * NumbersEdge + metrics.horizontalAdvance(ErrorSign + u' ') +
         metrics.horizontalAdvance(u'9') * std::max(LeastDigits, digits);
}

void LoopEdit::PlaceNumbers() {
  setViewportMargins(NumbersWidth(), 0, 0, 0);
  const QRect inside = contentsRect();
  numbers_->setGeometry(inside.left(), inside.top(), NumbersWidth(), inside.height());
}

void LoopEdit::PaintNumbers(QPaintEvent& event) {
  QPainter painter(numbers_);
  painter.fillRect(event.rect(), palette().color(QPalette::AlternateBase));
  painter.setFont(font());
  const bool dark = OnDark(*this);
  QTextBlock block = firstVisibleBlock();
  double top = blockBoundingGeometry(block).translated(contentOffset()).top();
  for (; block.isValid() && top <= event.rect().bottom(); block = block.next()) {
    const double height = blockBoundingRect(block).height();
    const QRectF row(NumbersEdge, top, numbers_->width() - 2 * NumbersEdge, height);
    const loops::Problem* const problem = ProblemOf(block.blockNumber() + 1);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    if (problem) {
      painter.setPen(problem->Warning ? WarningColour(dark) : ErrorColour(dark));
      painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter,
                       problem->Warning ? WarningSign : ErrorSign);
    }
    painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(block.blockNumber() + 1));
    top += height;
  }
}

// Keys that the program has as shortcuts, too, mean the text while it has the focus.
bool LoopEdit::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (IsKey(key, Qt::Key_S) || IsApply(key)) {
      event->accept();
      return true;
    }
  }
  if (event->type() == QEvent::ToolTip) {
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const QPoint at = viewport()->mapFrom(this, help.pos());
    const loops::Problem* const problem =
        ProblemOf(cursorForPosition({std::max(at.x(), 0), at.y()}).blockNumber() + 1);
    QToolTip::showText(help.globalPos(), problem ? QtText(problem->Text) : toolTip(), this);
    return true;
  }
  return QPlainTextEdit::event(event);
}

// A new line begins where the one before did.
void LoopEdit::keyPressEvent(QKeyEvent* event) {
  const bool alone = event->modifiers() == Qt::NoModifier;
  if (IsApply(*event)) {
    emit ApplyAsked();
  } else if (IsKey(*event, Qt::Key_S)) {
    emit SaveAsked();
  } else if (alone && event->key() == Qt::Key_Tab) {
    textCursor().insertText(LoopIndent);
  } else if (alone && event->key() == Qt::Key_Return) {
    const QString line = textCursor().block().text().left(textCursor().positionInBlock());
    const auto first = std::find_if(line.begin(), line.end(), [](QChar c) { return c != u' '; });
    textCursor().insertText(u'\n' + QString(first - line.begin(), u' '));
    ensureCursorVisible();
  } else {
    QPlainTextEdit::keyPressEvent(event);
  }
}

void LoopEdit::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  PlaceNumbers();
}

void LoopEdit::TakeGround() {
  colours_->SetDark(OnDark(*this));
  MarkProblems();
}

void LoopEdit::changeEvent(QEvent* event) {
  QPlainTextEdit::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) TakeGround();
  if (event->type() == QEvent::FontChange && numbers_) PlaceNumbers();
}

}  // namespace torvane
