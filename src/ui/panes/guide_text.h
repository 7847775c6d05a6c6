#pragma once

#include <QTextBrowser>
#include <QTimer>

namespace torvane {

/// Shows a text in Markdown with its pictures and its code, which are as wide as the view at most.
/// A link to one of its headings ("#first-run") goes there.
class GuideText : public QTextBrowser {
  Q_OBJECT

 public:
  explicit GuideText(QWidget* parent);

  QVariant loadResource(int type, const QUrl& name) override;

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Follow(const QUrl& link);
  void GoTo(const QString& heading);
  void FitPictures();

  QTimer fit_;      // when the view has kept its width for a moment
  int fitted_ = 0;  // width that the pictures are for
};

}  // namespace torvane
