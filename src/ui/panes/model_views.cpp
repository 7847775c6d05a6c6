#include "ui/panes/model_views.h"

#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "core/model.h"
#include "plot/qt_text.h"
#include "ui/panes/diagram/diagram_view.h"
#include "ui/panes/diagram/loop_picture.h"
#include "ui/widgets/window_place.h"

namespace torvane {

namespace {

constexpr int FrameWidth = 4;        // around a diagram in a window of its own, pixels
constexpr int TitleHeight = 24;      // above it
constexpr double MostHeight = 0.36;  // of the display, for a diagram in a window of its own
constexpr QSize TextWindow(680, 560);
constexpr QSize SmallestPicture(240, 160);

void ShowAbove(QDialog& window) {
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace

ModelPictureWindow::ModelPictureWindow(QMainWindow& window)
    : QDockWidget(&window),
      window_(window),
      pages_(new QStackedWidget(this)),
      diagram_(new DiagramView(this)),
      picture_(new QLabel(this)) {
  setObjectName(QStringLiteral("ModelPictureF"));
  picture_->setObjectName(QStringLiteral("IPicture"));
  picture_->setAccessibleName(QStringLiteral("Block diagram of the model"));
  picture_->setAlignment(Qt::AlignCenter);
  picture_->setMinimumSize(SmallestPicture);
  picture_->setWordWrap(true);
  auto* scrolled = new QScrollArea(this);
  scrolled->setFrameShape(QFrame::NoFrame);
  scrolled->setFocusPolicy(Qt::NoFocus);
  scrolled->setWidgetResizable(true);
  scrolled->setWidget(diagram_);
  scrolled->setMinimumSize(SmallestPicture);
  pages_->addWidget(scrolled);
  pages_->addWidget(picture_);
  setWidget(pages_);
  window.addDockWidget(Qt::BottomDockWidgetArea, this);
  connect(this, &QDockWidget::topLevelChanged, diagram_, &DiagramView::SetWhole);
  hide();
  setFloating(true);
}

void ModelPictureWindow::SetModel(ZelModel* model, const DataFolder& folder, bool stays) {
  layout_.Abandon();
  const bool own = model && IsOwnLoop(*model);
  waiting_ = model && IsLaidOut(*model) ? model : nullptr;
  const bool drawnNow = model && !waiting_;
  const bool live = diagram_->SetModel(drawnNow ? model : nullptr,
                                       drawnNow ? LivingDrawing(*model) : DrawnModel());
  hasDiagram_ = live || own || (model && !model->PictureFile().empty());
  pages_->setCurrentIndex(live ? 0 : 1);
  if ((isFloating() && !stays) || (model && !hasDiagram_)) hide();
  if (!model) return;
  setWindowTitle(QStringLiteral("Model for  \"%1\"").arg(QtText(model->Name())));
  if (waiting_ && isVisible()) DrawWaiting();
  if (live || !drawnNow || !hasDiagram_) return;
  own ? ShowLoopPicture(*model) : ShowPicture(QtText(model->PictureFile()), folder);
}

// A layout takes its time, which a loop that nobody looks at is not given.
void ModelPictureWindow::DrawWaiting() {
  ZelModel* const model = std::exchange(waiting_, nullptr);
  if (!model) return;
  ShowPictureFile({}, QStringLiteral("Graphviz lays the diagram out..."));
  layout_.Start(*model, [this, model](const DrawnModel& drawn) { ShowDrawn(*model, drawn); });
}

void ModelPictureWindow::ShowDrawn(ZelModel& model, const DrawnModel& drawn) {
  const bool live = diagram_->SetModel(&model, drawn);
  pages_->setCurrentIndex(live ? 0 : 1);
  if (!live) ShowLoopPicture(model);
  if (std::exchange(fits_, false) && isFloating()) FitWindow();
}

void ModelPictureWindow::OpenWindow() {
  if (!isVisible()) {
    setFloating(true);
    FitWindow();
  }
  const bool waits = waiting_ != nullptr;
  show();
  fits_ = waits && layout_.IsRunning();
  raise();
  activateWindow();
}

// At the lower edge, where it leaves sight of the scope's graph; but nothing of the diagram is out
// of sight where the display has room for it.
void ModelPictureWindow::FitWindow() {
  const QSize frame(2 * FrameWidth, 2 * FrameWidth + TitleHeight);
  const QSize whole = screen()->availableSize();
  const QSize room = QSize(whole.width(), qRound(whole.height() * MostHeight)) - frame;
  const QSize wanted = diagram_->sizeHint();
  const bool fits = wanted.boundedTo(room) == wanted;
  const QSize size = fits ? wanted : wanted.scaled(room, Qt::KeepAspectRatio);
  resize((size.expandedTo(diagram_->minimumSize()) + frame).boundedTo(whole));
  move(OnDisplay(window_.geometry().bottomLeft(), *this));
}

void ModelPictureWindow::OpenPane(int most) {
  setFloating(false);
  show();
  window_.resizeDocks({this}, {std::min(window_.height() * 2 / 5, most)}, Qt::Vertical);
}

void ModelPictureWindow::ShowPicture(const QString& file, const DataFolder& folder) {
  const QString path = folder.Find(file);
  ShowPictureFile(path, path.isEmpty() ? folder.MissingText(file)
                                       : QStringLiteral("Cannot read \"%1\".").arg(path));
}

void ModelPictureWindow::ShowLoopPicture(const ZelModel& model) {
  const QString path = LoopPicture(model);
  QString words = QStringLiteral(
                      "The diagram of the loop \"%1\" cannot be drawn: %2.\n\nA drawing in a file "
                      "beside the loop's is shown here when the loop's annotation names it:\n"
                      "annotation(__Torvane(picture = \"drawing.svg\"))")
                      .arg(QtText(model.Name()), QtText(diagram_->Fault()));
  if (!path.isEmpty()) {
    words = QFileInfo::exists(path)
                ? QStringLiteral("Cannot read \"%1\".").arg(path)
                : QStringLiteral("The loop's picture \"%1\" is missing.").arg(path);
  } else if (!model.PictureFile().empty()) {
    words = QStringLiteral(
                "The loop's picture \"%1\" is not shown: it has to stand in the folder of "
                "the loop's file or below.")
                .arg(QtText(model.PictureFile()));
  }
  ShowPictureFile(path, words);
}

// In its place the words, when it cannot be read.
void ModelPictureWindow::ShowPictureFile(const QString& path, const QString& words) {
  original_ = path.isEmpty() ? QPixmap() : QPixmap(path);
  picture_->setText(words);
  Fit();
}

void ModelPictureWindow::Fit() {
  if (original_.isNull()) return;
  const double ratio = devicePixelRatioF();
  const QSize room = (QSizeF(picture_->size()) * ratio).toSize();
  QPixmap fitted = original_;
  if (fitted.width() > room.width() || fitted.height() > room.height()) {
    fitted = fitted.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }
  fitted.setDevicePixelRatio(ratio);
  picture_->setPixmap(fitted);
}

void ModelPictureWindow::resizeEvent(QResizeEvent* event) {
  QDockWidget::resizeEvent(event);
  Fit();
}

void ModelPictureWindow::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  DrawWaiting();
  diagram_->Refresh();
}

ModelTextWindow::ModelTextWindow(QWidget* parent)
    : QDialog(parent, Qt::Tool), text_(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("ModelTextF"));
  text_->setObjectName(QStringLiteral("MText"));
  text_->setAccessibleName(QStringLiteral("Description of the model"));
  text_->setReadOnly(true);
  text_->setTabChangesFocus(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(text_->font().pointSizeF());
  text_->setFont(font);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(text_);
  resize(TextWindow.boundedTo(screen()->availableSize() * 0.9));
}

void ModelTextWindow::ShowModel(const QString& modelName, const QString& file,
                                const DataFolder& folder) {
  const QString path = folder.Find(file);
  QFile source(path);
  QString text;
  if (path.isEmpty()) {
    text = folder.MissingText(file);
  } else if (source.open(QIODevice::ReadOnly | QIODevice::Text)) {
    text = QString::fromUtf8(source.readAll());
  } else {
    text = QStringLiteral("Cannot read \"%1\": %2").arg(path, source.errorString());
  }
  ShowText(modelName, text);
}

// A short text leaves sight of the instruments, in the corner where there are fewest.
void ModelTextWindow::ShowText(const QString& modelName, const QString& text) {
  setWindowTitle(QStringLiteral("More about Model \"%1\"").arg(modelName));
  text_->setPlainText(text);
  const int lines = static_cast<int>(text.count(u'\n')) + 4;
  const QSize fitting(TextWindow.width(), text_->fontMetrics().lineSpacing() * lines);
  resize(fitting.boundedTo(TextWindow).boundedTo(screen()->availableSize() * 0.9));
  if (!isVisible()) {
    const QPoint bar(0, style()->pixelMetric(QStyle::PM_TitleBarHeight));
    move(parentWidget()->window()->geometry().bottomRight() - rect().bottomRight() - bar);
  }
  ShowAbove(*this);
}

}  // namespace torvane
