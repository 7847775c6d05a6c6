#include "ui/panes/guide_text.h"

#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <utility>

namespace torvane {

namespace {

constexpr int BesidePictures = 40;  // of pictures: margins and scroll bar
constexpr int FitMilliseconds = 150;

// As a link names a heading: small letters, hyphens for blanks, nothing for the rest.
QString AnchorOf(const QString& heading) {
  QString name;
  for (const QChar character : heading.toLower()) {
    if (character.isLetterOrNumber()) name += character;
    if (character == u' ') name += u'-';
  }
  return name;
}

}  // namespace

GuideText::GuideText(QWidget* parent) : QTextBrowser(parent) {
  setOpenLinks(false);
  connect(this, &QTextBrowser::anchorClicked, this, &GuideText::Follow);
  fit_.setSingleShot(true);
  fit_.setInterval(FitMilliseconds);
  connect(&fit_, &QTimer::timeout, this, &GuideText::FitPictures);
}

QVariant GuideText::loadResource(int type, const QUrl& name) {
  const QVariant resource = QTextBrowser::loadResource(type, name);
  if (type != QTextDocument::ImageResource) return resource;
  QImage picture = QImage::fromData(resource.toByteArray());
  const double ratio = devicePixelRatioF();
  const int most = qRound((width() - BesidePictures) * ratio);
  if (picture.width() > most) picture = picture.scaledToWidth(most, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(ratio);
  return picture;
}

void GuideText::resizeEvent(QResizeEvent* event) {
  QTextBrowser::resizeEvent(event);
  if (width() != fitted_) fit_.start();
}

void GuideText::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
  QTextBrowser::doSetSource(name, type);
  // Lines of code too long for the pane go on in the next one: all else would move aside with them.
  QTextBlockFormat breakable;
  breakable.setNonBreakableLines(false);
  QTextCursor all(document());
  all.select(QTextCursor::Document);
  all.mergeBlockFormat(breakable);
}

// The text before the first line in sight stays there. What is not laid out yet lies at the top
// left, so the beginning is not asked what stands there.
void GuideText::FitPictures() {
  if (std::exchange(fitted_, width()) == width() || source().isEmpty()) return;
  const bool atTop = verticalScrollBar()->value() == 0;
  const int place = atTop ? 0 : cursorForPosition({0, 0}).position();
  reload();
  if (atTop) return verticalScrollBar()->setValue(0);
  QTextCursor top(document());
  top.setPosition(place);
  verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(top).top());
}

void GuideText::Follow(const QUrl& link) {
  if (link.path().isEmpty() || link.path() == source().path()) return GoTo(link.fragment());
  setSource(link, QTextDocument::MarkdownResource);
}

void GuideText::GoTo(const QString& heading) {
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0 || AnchorOf(block.text()) != heading) continue;
    verticalScrollBar()->setValue(verticalScrollBar()->value() +
                                  cursorRect(QTextCursor(block)).top());
    return;
  }
}

}  // namespace torvane
