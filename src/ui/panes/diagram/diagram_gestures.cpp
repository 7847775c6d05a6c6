// What the mouse and the keys do on a block diagram.

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QToolTip>
#include <algorithm>

#include "instruments/analyser/analyser.h"
#include "plot/qt_text.h"
#include "ui/panes/diagram/diagram_view.h"
#include "ui/widgets/constant_entry.h"
#include "ui/widgets/edit_binding.h"

namespace torvane {

namespace {

constexpr int LeastEditor = 90;  // pixels of width

}  // namespace

QString DiagramView::Place::Hint() const {
  const std::string& what = Signal ? Signal->Signal().Description() : Number->Description();
  QString hint = QtText(Name());
  if (!what.empty()) hint += QStringLiteral(": ") + QtText(what);
  hint += QStringLiteral("\n") + Text + QLatin1Char(' ') + QtText(Unit()) + QStringLiteral("\n");
  if (!Signal) return hint + QStringLiteral("Click to edit");
  return hint + (Colour < 0 ? QStringLiteral("Click to show its trace")
                            : QStringLiteral("Click to hide its trace"));
}

std::optional<std::size_t> DiagramView::PlaceAt(const QPoint& at) const {
  for (std::size_t k = 0; k < places_.size(); ++k) {
    const auto has = [&](const QRectF& place) { return OnScreen(place).contains(at); };
    const QList<QRectF>& names = places_[k].Names;
    if (has(places_[k].Value) || std::any_of(names.begin(), names.end(), has)) return k;
  }
  return std::nullopt;
}

void DiagramView::GoTo(std::optional<std::size_t> place) {
  UpdatePlace(current_);
  if (place) current_ = *place;
  UpdatePlace(current_);
  if (current_ < places_.size()) setAccessibleDescription(places_[current_].Hint());
}

bool DiagramView::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    if (const auto place = PlaceAt(help->pos())) {
      QToolTip::showText(help->globalPos(), places_[*place].Hint(), this);
    } else {
      QToolTip::hideText();
    }
    return true;
  }
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) UpdatePlace(current_);
  return QWidget::event(event);
}

void DiagramView::mouseMoveEvent(QMouseEvent* event) {
  const auto place = PlaceAt(event->pos());
  setCursor(place ? Qt::PointingHandCursor : Qt::ArrowCursor);
  if (place == hovered_) return;
  UpdatePlace(hovered_);
  hovered_ = place;
  UpdatePlace(hovered_);
}

void DiagramView::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  UpdatePlace(hovered_);
  hovered_.reset();
}

void DiagramView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const auto place = PlaceAt(event->pos());
  if (!place) return;
  GoTo(place);
  Act(places_[*place]);
}

void DiagramView::contextMenuEvent(QContextMenuEvent* event) {
  const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
  const auto place = byMouse ? PlaceAt(event->pos()) : std::optional(current_);
  if (!place || *place >= places_.size()) return;
  GoTo(place);
  const QRect area = OnScreen(places_[*place].Value).toAlignedRect();
  OpenMenu(places_[*place], byMouse ? event->pos() : area.bottomLeft());
}

void DiagramView::keyPressEvent(QKeyEvent* event) {
  const std::size_t count = places_.size();
  const int key = event->key();
  const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (editor_ && (isEnter || key == Qt::Key_Escape)) {
    CloseEditor();
    setFocus();
  } else if (count == 0) {
    QWidget::keyPressEvent(event);
  } else if (key == Qt::Key_Right || key == Qt::Key_Down) {
    GoTo((current_ + 1) % count);
  } else if (key == Qt::Key_Left || key == Qt::Key_Up) {
    GoTo((current_ + count - 1) % count);
  } else if (isEnter || key == Qt::Key_Space) {
    Act(places_[current_]);
  } else {
    QWidget::keyPressEvent(event);
  }
}

void DiagramView::Act(const Place& place) {
  const QRect area = OnScreen(place.Value).toAlignedRect();
  if (place.Signal) {
    Scope().SetDisplayed(*place.Signal, !place.Signal->Displayed());
  } else if (place.Number->IsList()) {
    OpenMenu(place, area.bottomLeft());
  } else {
    EditNumber(place);
  }
  Refresh();
}

// The edit lies over the value until it is done with. Enter, which it hands on to the diagram,
// closes it there: without an edit Enter would open one.
void DiagramView::EditNumber(const Place& place) {
  CloseEditor();
  Constant& constant = *place.Number;
  edited_ = constant.Name();
  editor_ = new QLineEdit(this);
  editor_->setObjectName(QStringLiteral("EDiagramValue"));
  editor_->setAccessibleName(QtText("Value of " + edited_));
  const auto commit = [this, &constant](const std::string& text) {
    EnterConstant(constant, text, *this, PlaceOf(constant.Name()));
  };
  new EditBinding(*editor_, commit, [&constant] { return constant.DisplayText(); });
  connect(editor_, &QLineEdit::editingFinished, this, [this] {
    if (editor_ && !editor_->hasFocus()) CloseEditor();
    Refresh();
  });
  PlaceEditor();
  editor_->selectAll();
  editor_->show();
  editor_->setFocus();
}

void DiagramView::PlaceEditor() {
  if (!editor_) return;
  const QRect at = PlaceOf(edited_);
  QRect place(QPoint(), QSize(std::max(at.width(), LeastEditor), editor_->sizeHint().height()));
  place.moveCenter(at.center());
  place.moveLeft(std::clamp(place.left(), 0, std::max(width() - place.width(), 0)));
  place.moveTop(std::clamp(place.top(), 0, std::max(height() - place.height(), 0)));
  editor_->setGeometry(place);
}

// What is being done in it comes to its end first.
void DiagramView::CloseEditor() {
  QLineEdit* closing = editor_;
  editor_ = nullptr;
  if (!closing) return;
  closing->hide();
  closing->deleteLater();
}

void DiagramView::OpenMenu(const Place& place, const QPoint& at) {
  menu_->clear();
  if (place.Signal) {
    OfferInstruments(*place.Signal);
  } else if (place.Number->IsList()) {
    OfferChoices(*place.Number);
  } else {
    Constant& constant = *place.Number;
    menu_->addAction(QStringLiteral("&Edit"), this, [this, place] { EditNumber(place); });
    menu_->addAction(QStringLiteral("&Default"), this, [this, &constant] {
      constant.RestoreDefault();
      Refresh();
    });
  }
  menu_->popup(mapToGlobal(at));
}

void DiagramView::OfferChoices(Constant& constant) {
  for (const std::string& choice : constant.Choices()) {
    QAction* item = menu_->addAction(QtText(choice), this, [this, &constant, choice] {
      constant.SetFromText(choice);
      Refresh();
    });
    item->setCheckable(true);
    item->setChecked(choice == constant.DisplayText());
  }
}

void DiagramView::OfferInstruments(const SignalChannel& signal) {
  ZelScope& scope = Scope();
  ZelChannel& channel = *scope.FindChannel(signal.Name());
  QAction* shown = menu_->addAction(QStringLiteral("&Trace"), this, [this, &scope, &channel] {
    scope.SetDisplayed(channel, !channel.Displayed());
    Refresh();
  });
  shown->setCheckable(true);
  shown->setChecked(channel.Displayed());
  for (const InstrumentKind kind : {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine}) {
    for (Instrument* instrument : model_->Bench().Instruments(kind)) {
      OfferAnalyser(dynamic_cast<FrequencyAnalyser&>(*instrument), signal.Name());
    }
  }
  menu_->addSeparator();
  menu_->addAction(QStringLiteral("Add &Meter"), this,
                   [this, name = QtText(signal.Name())] { emit MeterWanted(name); });
}

// An analyser is called what its window is.
void DiagramView::OfferAnalyser(FrequencyAnalyser& analyser, const std::string& name) {
  const auto* pane = dynamic_cast<const QWidget*>(analyser.Instrument::View());
  const QString title = pane ? pane->windowTitle() : QtText(analyser.Name());
  menu_->addSeparator();
  const auto offer = [&](const char* text, const AnalyserChannel* present, auto choose) {
    QAction* item =
        menu_->addAction(QString::fromLatin1(text).arg(title), this, [this, &analyser, choose] {
          choose();
          emit Given(analyser);
        });
    item->setCheckable(true);
    item->setChecked(present && present->Name() == name);
  };
  offer("Input of %1", analyser.Input(), [&analyser, name] { analyser.SetInput(name); });
  offer("Output of %1", analyser.Output(), [&analyser, name] { analyser.SetOutput(name); });
}

}  // namespace torvane
