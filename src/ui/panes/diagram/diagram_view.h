#pragma once

#include <QPixmap>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "core/constant.h"
#include "core/model.h"
#include "instruments/scope/scope.h"
#include "plot/diagram/diagram.h"
#include "plot/diagram/loop_diagram.h"
#include "plot/scope_colours.h"

class QLineEdit;
class QMenu;

namespace torvane {

class FrequencyAnalyser;

/// A model's block diagram with the present value of each signal beside its line and of each
/// constant in its block. A click on a signal shows or hides its trace, its menu gives it to the
/// analysers and to a meter; a click on a constant edits it, as in the table of constants. Keys do
/// so too: arrows go from place to place.
class DiagramView : public QWidget {
  Q_OBJECT

 public:
  explicit DiagramView(QWidget* parent);

  /// Shows the model, which must outlive this use of it, in its drawing; false when that is none.
  /// Without a model nothing is shown.
  bool SetModel(ZelModel* model, DrawnModel drawing);

  /// Why an own loop could not be drawn from its equations; empty when nothing is in the way.
  const std::string& Fault() const { return drawn_.Fault; }

  /// With title and legend, or the loop alone.
  void SetWhole(bool whole);

  /// How traces are told apart.
  void SetLook(const TraceLook& look);

  /// Takes the present values; paints what is another than before.
  void Refresh();

  /// Where the value of a constant or else a signal stands, in pixels; empty for what the drawing
  /// does not have.
  QRect PlaceOf(const std::string& name) const;

  QSize sizeHint() const override;

 signals:
  /// A meter is wanted that measures the signal.
  void MeterWanted(const QString& signal);
  /// An instrument has been given a signal.
  void Given(Instrument& instrument);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Place {
    SignalChannel* Signal = nullptr;  // one of the two
    Constant* Number = nullptr;
    QRectF Value;  // in units of the drawing
    QList<QRectF> Names;
    QString Text;
    int Colour = -1;  // of the trace, while it is shown

    const std::string& Name() const { return Signal ? Signal->Name() : Number->Name(); }
    const std::string& Unit() const { return Signal ? Signal->Signal().Unit() : Number->Unit(); }
    QString Hint() const;
    /// Takes the present value; whether it is another.
    bool Take();
  };

  bool LoadDrawing();
  void AddPlace(SignalChannel* signal, Constant* constant);
  void FitDrawing();
  QRectF Part() const { return whole_ ? diagram_->Whole() : diagram_->Loop(); }
  double Scale() const { return area_.width() / Part().width(); }
  void Paint(QPainter& painter, const Place& place, bool current) const;
  QRectF OnScreen(const QRectF& place) const;
  std::optional<std::size_t> PlaceAt(const QPoint& at) const;
  void GoTo(std::optional<std::size_t> place);
  void UpdatePlace(std::optional<std::size_t> place);
  void Act(const Place& place);
  void EditNumber(const Place& place);
  void PlaceEditor();
  void CloseEditor();
  void OpenMenu(const Place& place, const QPoint& at);
  void OfferChoices(Constant& constant);
  void OfferInstruments(const SignalChannel& signal);
  void OfferAnalyser(FrequencyAnalyser& analyser, const std::string& name);
  ZelScope& Scope() const;

  ZelModel* model_ = nullptr;
  DrawnModel drawn_;
  std::optional<Diagram> diagram_;
  std::vector<Place> places_;
  QPixmap drawing_;  // as large as it is shown
  QRectF area_;      // where it is shown
  bool whole_ = true;
  TraceLook look_;
  QMenu* menu_;
  QPointer<QLineEdit> editor_;  // of a constant that is being edited
  std::string edited_;          // its name
  std::optional<std::size_t> hovered_;
  std::size_t current_ = 0;  // for keys
};

}  // namespace torvane
