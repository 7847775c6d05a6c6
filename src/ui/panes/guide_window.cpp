#include "ui/panes/guide_window.h"

#include <QImage>
#include <QScreen>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace torvane {

namespace {

constexpr QSize GuideWindow(820, 680);
constexpr double ShareOfScreen = 0.8;  // at most, for the frame has to be in sight, too
constexpr int RoomBeside = 60;         // of pictures: margins and scroll bar

/// Pictures are as wide as the window at most.
class GuideText : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

  QVariant loadResource(int type, const QUrl& name) override {
    const QVariant resource = QTextBrowser::loadResource(type, name);
    if (type != QTextDocument::ImageResource) return resource;
    QImage picture = QImage::fromData(resource.toByteArray());
    const double ratio = devicePixelRatioF();
    const int most = qRound((window()->width() - RoomBeside) * ratio);
    if (picture.width() > most) picture = picture.scaledToWidth(most, Qt::SmoothTransformation);
    picture.setDevicePixelRatio(ratio);
    return picture;
  }
};

}  // namespace

GuideF::GuideF(const DataFolder& folder, QWidget* parent)
    : QDialog(parent, Qt::Tool), text_(new GuideText(this)) {
  setObjectName(QStringLiteral("GuideF"));
  setWindowTitle(QStringLiteral("Guide"));
  text_->setObjectName(QStringLiteral("TBGuide"));
  text_->setAccessibleName(QStringLiteral("Guide"));
  resize(GuideWindow.boundedTo(screen()->availableSize() * ShareOfScreen));
  const QString file = QStringLiteral("guide/guide.md");
  const QString path = folder.Find(file);
  if (path.isEmpty()) {
    text_->setPlainText(folder.MissingText(file));
  } else {
    text_->setSource(QUrl::fromLocalFile(path), QTextDocument::MarkdownResource);
  }
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(text_);
}

}  // namespace torvane
