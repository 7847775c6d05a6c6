#include "ui/panes/diagram/diagram_view.h"

#include <QLineEdit>
#include <QMenu>
#include <QPaintEvent>
#include <algorithm>
#include <utility>

#include "plot/qt_text.h"
#include "ui/widgets/picture_ground.h"

namespace torvane {

namespace {

constexpr QSize LeastDiagram(240, 120);
constexpr double WantedWidth = 1100.0;
constexpr double LeastScale = 0.5;  // of a drawing that can be read
constexpr int ValueSize = 17;       // of the font, in units of the drawing
constexpr double ValueRounding = 4.0;
constexpr int ValueEdge = 2;  // pixels around a value that belong to it

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

}  // namespace

DiagramView::DiagramView(QWidget* parent) : QWidget(parent), menu_(new QMenu(this)) {
  setObjectName(QStringLiteral("IDiagram"));
  setAccessibleName(QStringLiteral("Block diagram of the model"));
  menu_->setObjectName(QStringLiteral("MDiagram"));
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
}

QSize DiagramView::sizeHint() const {
  return diagram_ ? (Part().size() * (WantedWidth / Part().width())).toSize() : LeastDiagram;
}

bool DiagramView::SetModel(ZelModel* model, DrawnModel drawing) {
  if (editor_) editor_->blockSignals(true);
  CloseEditor();
  menu_->close();
  places_.clear();
  diagram_.reset();
  hovered_.reset();
  current_ = 0;
  model_ = model;
  drawn_ = std::move(drawing);
  const bool drawn = model && LoadDrawing();
  FitDrawing();
  Refresh();
  return drawn;
}

bool DiagramView::LoadDrawing() {
  if (drawn_.Svg.isEmpty()) return false;
  diagram_.emplace(drawn_.Svg, IsDark(palette()) ? Diagram::Ground::Dark : Diagram::Ground::Light);
  if (!diagram_->IsValid()) diagram_.reset();
  if (!diagram_) return false;
  for (const auto& channel : Scope().Channels()) AddPlace(channel.get(), nullptr);
  for (Constant* constant : model_->Bench().Constants()) AddPlace(nullptr, constant);
  // Keys go through them as one reads.
  std::stable_sort(places_.begin(), places_.end(), [](const Place& a, const Place& b) {
    return std::pair(a.Value.top(), a.Value.left()) < std::pair(b.Value.top(), b.Value.left());
  });
  return true;
}

void DiagramView::AddPlace(SignalChannel* signal, Constant* constant) {
  Place place;
  place.Signal = signal;
  place.Number = constant;
  const auto kind = signal ? Diagram::Kind::Signal : Diagram::Kind::Constant;
  place.Value = diagram_->ValuePlace(kind, place.Name());
  if (place.Value.isEmpty()) return;
  place.Names = diagram_->NamePlaces(kind, place.Name());
  places_.push_back(std::move(place));
}

ZelScope& DiagramView::Scope() const {
  return static_cast<ZelScope&>(*model_->Bench().Instruments(InstrumentKind::Scope).front());
}

void DiagramView::SetWhole(bool whole) {
  if (whole_ == whole) return;
  whole_ = whole;
  FitDrawing();
}

void DiagramView::SetLook(const TraceLook& look) {
  look_ = look;
  update();
}

bool DiagramView::Place::Take() {
  const QString text =
      QtText(Signal ? PresentValue(Signal->Signal().DisplayValue()) : Number->DisplayText());
  const int colour = Signal ? Signal->Colour() : -1;
  if (text == Text && colour == Colour) return false;
  Text = text;
  Colour = colour;
  return true;
}

void DiagramView::Refresh() {
  if (!isVisible()) return;
  for (std::size_t k = 0; k < places_.size(); ++k) {
    if (places_[k].Take()) UpdatePlace(k);
  }
}

void DiagramView::UpdatePlace(std::optional<std::size_t> place) {
  if (!place || *place >= places_.size()) return;
  update(OnScreen(places_[*place].Value)
             .toAlignedRect()
             .adjusted(-ValueEdge, -ValueEdge, ValueEdge, ValueEdge));
}

QRectF DiagramView::OnScreen(const QRectF& place) const {
  const double scale = Scale();
  return {area_.topLeft() + (place.topLeft() - Part().topLeft()) * scale, place.size() * scale};
}

// A constant may be called like a signal.
QRect DiagramView::PlaceOf(const std::string& name) const {
  const Place* found = nullptr;
  for (const Place& place : places_) {
    if (place.Name() == name && (!found || place.Number)) found = &place;
  }
  return found ? OnScreen(found->Value).toAlignedRect() : QRect();
}

void DiagramView::FitDrawing() {
  drawing_ = QPixmap();
  setMinimumSize(diagram_ ? (Part().size() * LeastScale).toSize() : LeastDiagram);
  if (diagram_) {
    QRectF shown(QPointF(), Part().size().scaled(size(), Qt::KeepAspectRatio));
    shown.moveCenter(QRectF(rect()).center());
    area_ = shown.toAlignedRect();
    const double ratio = devicePixelRatioF();
    drawing_ = QPixmap((area_.size() * ratio).toSize());
    QPainter painter(&drawing_);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    diagram_->Paint(painter, drawing_.rect(), Part());
    drawing_.setDevicePixelRatio(ratio);
  }
  update();
}

void DiagramView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const ScopeColours colours = ColoursFor(palette(), look_.Colours);
  painter.fillRect(event->rect(), colours.Around);
  if (!diagram_) return;
  if (drawing_.devicePixelRatio() != devicePixelRatioF()) FitDrawing();
  painter.drawPixmap(area_.topLeft(), drawing_);
  painter.setRenderHint(QPainter::Antialiasing);
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(std::max(qRound(ValueSize * Scale()), 1));
  painter.setFont(font);
  for (std::size_t k = 0; k < places_.size(); ++k) {
    if (!OnScreen(places_[k].Value).intersects(event->rect())) continue;
    Paint(painter, places_[k], k == hovered_ || (hasFocus() && k == current_));
  }
}

// A constant is framed as what can be edited, a signal in its trace's colour. The unit is told
// where there is room for it.
void DiagramView::Paint(QPainter& painter, const Place& place, bool current) const {
  const ScopeColours colours = ColoursFor(palette(), look_.Colours);
  const QRectF area = OnScreen(place.Value);
  QPen frame(Qt::NoPen);
  if (place.Number) frame = QPen(colours.Axis, 1.0);
  if (place.Colour >= 0) frame = QPen(colours.Trace(place.Colour), 2.0);
  if (current) frame = QPen(palette().color(QPalette::Highlight), 2.0);
  painter.setPen(frame);
  painter.setBrush(place.Number ? QBrush(colours.Plate) : QBrush(Qt::NoBrush));
  const double rounding = ValueRounding * Scale();
  painter.drawRoundedRect(area, rounding, rounding);
  painter.setPen(colours.Text);
  // What changes keeps its size, and its unit or none.
  const double room = area.width() - 2 * rounding;
  const QFontMetricsF metrics(painter.font());
  const QString widest = place.Signal ? QStringLiteral("-0.0000") : place.Text;
  const QString unit = place.Unit().empty() ? QString() : QLatin1Char(' ') + QtText(place.Unit());
  const bool withUnit = metrics.horizontalAdvance(widest + unit) <= room;
  const QString text = withUnit ? place.Text + unit : place.Text;
  const double width = std::max(metrics.horizontalAdvance(text), metrics.horizontalAdvance(widest));
  painter.save();
  painter.translate(area.center());
  const double fit = std::min(room / width, 1.0);
  painter.scale(fit, fit);
  painter.drawText(QRectF(-area.width(), -area.height(), 2 * area.width(), 2 * area.height()),
                   Qt::AlignCenter, text);
  painter.restore();
}

void DiagramView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  FitDrawing();
  PlaceEditor();
}

void DiagramView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || !diagram_) return;
  places_.clear();
  LoadDrawing();
  FitDrawing();
  Refresh();
}

}  // namespace torvane
