#include "ui/panes/guide_window.h"

#include <QMainWindow>
#include <QScreen>
#include <algorithm>

#include "ui/panes/guide_text.h"

namespace torvane {

namespace {

constexpr QSize WindowSize(820, 680);
constexpr double ShareOfScreen = 0.8;  // at most, for the frame has to be in sight, too
constexpr int NarrowGuide = 340;       // at the side
constexpr int WideGuide = 560;

}  // namespace

GuideWindow::GuideWindow(const DataFolder& folder, QMainWindow& window)
    : QDockWidget(QStringLiteral("Guide"), &window), window_(window), text_(new GuideText(this)) {
  setObjectName(QStringLiteral("GuideF"));
  text_->setObjectName(QStringLiteral("TBGuide"));
  text_->setAccessibleName(QStringLiteral("Guide"));
  const QString file = QStringLiteral("guide/guide.md");
  const QString path = folder.Find(file);
  if (path.isEmpty()) {
    text_->setPlainText(folder.MissingText(file));
  } else {
    text_->setSource(QUrl::fromLocalFile(path), QTextDocument::MarkdownResource);
  }
  setWidget(text_);
  window_.addDockWidget(Qt::RightDockWidgetArea, this);
  hide();
}

void GuideWindow::Open(int spare) {
  const bool opens = !isVisible();
  if (opens) setFloating(spare < NarrowGuide);
  show();
  if (opens && isFloating())
    resize(WindowSize.boundedTo(screen()->availableSize() * ShareOfScreen));
  if (opens && !isFloating())
    window_.resizeDocks({this}, {std::min(spare, WideGuide)}, Qt::Horizontal);
  raise();
  activateWindow();
}

}  // namespace torvane
