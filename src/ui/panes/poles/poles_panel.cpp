#include "ui/panes/poles/poles_panel.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/constant.h"
#include "core/csv.h"
#include "core/text.h"
#include "linear/root_locus.h"
#include "ui/panes/poles/pole_box.h"
#include "ui/session/live_theory.h"
#include "ui/session/session.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/export_menu.h"
#include "ui/widgets/window_place.h"

namespace torvane {

namespace {

constexpr int SliceMilliseconds = 8;  // of a locus, before others have their turn
constexpr int FrameMilliseconds = 100;
constexpr QSize LeastPicture(220, 200);
constexpr int TableRows = 5;
constexpr int Instruments = 616;  // width that the panel leaves when it is docked
constexpr int Narrow = 300;       // of the panel
constexpr int Wide = 520;
const QString NoLocus = QStringLiteral("None");

QString Told(double value) {
  return QString::fromStdString(FormatGeneral(value, 4, 1));
}

// One of a pair stands for both.
QStringList RowOf(const Root& pole) {
  QString value = Told(pole.Value.real());
  if (pole.Value.imag() != 0.0) {
    value += QStringLiteral(" \u00b1 j ") + Told(std::abs(pole.Value.imag()));
  }
  if (std::isinf(pole.Hz)) return {value, QString(), QStringLiteral("delay")};
  if (pole.Hz == 0.0) return {value, Told(0.0), QStringLiteral("integrator")};
  return {value, Told(pole.Hz), Told(pole.Damping)};
}

}  // namespace

PolesPanel::PolesPanel(Session& session, LiveTheory& theory, QMainWindow& dock)
    : QDockWidget(QStringLiteral("Poles"), &dock),
      dock_(dock),
      session_(session),
      theory_(theory),
      constants_(new QComboBox),
      box_(new PoleBox),
      table_(new QTableWidget(0, 3)),
      verdict_(new QLabel) {
  setObjectName(QStringLiteral("PolesPanel"));
  AddControls();
  dock.addDockWidget(Qt::RightDockWidgetArea, this);
  hide();
  connect(&theory, &LiveTheory::Changed, this, &PolesPanel::Follow);
  connect(&session, &Session::ModelChanged, this, &PolesPanel::TakeModel);
  connect(box_, &PoleBox::PoleTouched, this, &PolesPanel::ShowPole);
  connect(constants_, &QComboBox::activated, this, &PolesPanel::BeginLocus);
  goOn_.setSingleShot(true);
  connect(&goOn_, &QTimer::timeout, this, &PolesPanel::GoOn);
}

PolesPanel::~PolesPanel() = default;

void PolesPanel::AddControls() {
  auto* middle = new QWidget;
  auto* column = new QVBoxLayout(middle);
  auto* top = new QHBoxLayout;
  auto* caption = new QLabel(QStringLiteral("Root &locus of"));
  caption->setBuddy(constants_);
  constants_->setObjectName(QStringLiteral("CmBLocus"));
  constants_->setAccessibleName(QStringLiteral("Constant of the root locus"));
  constants_->setToolTip(
      QStringLiteral("Draws how the poles move with that constant, a decade to either side"));
  auto* all = new QToolButton;
  all->setObjectName(QStringLiteral("SBAllPoles"));
  all->setText(QStringLiteral("Fit"));
  all->setToolTip(QStringLiteral("Shows all poles; the wheel zooms, the mouse moves the plane"));
  connect(all, &QAbstractButton::clicked, box_, [this] { box_->SetView({}); });
  top->addWidget(caption);
  top->addWidget(constants_, 1);
  top->addWidget(all);
  box_->setObjectName(QStringLiteral("PBPoles"));
  box_->setAccessibleName(QStringLiteral("Poles"));
  box_->setMinimumSize(LeastPicture);
  table_->setObjectName(QStringLiteral("SGPoles"));
  table_->setAccessibleName(QStringLiteral("Poles"));
  table_->setToolTip(QStringLiteral("Each pole with its natural frequency and damping"));
  table_->setHorizontalHeaderLabels(
      {QStringLiteral("Pole"), QStringLiteral("Freq (Hz)"), QStringLiteral("Damping")});
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setShowGrid(false);
  table_->verticalHeader()->hide();
  const int row = table_->fontMetrics().height() + 7;
  table_->verticalHeader()->setDefaultSectionSize(row);
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  table_->setFixedHeight(table_->horizontalHeader()->sizeHint().height() + TableRows * row +
                         2 * table_->frameWidth());
  UseFixedDigits(*table_);
  verdict_->setObjectName(QStringLiteral("LPoles"));
  verdict_->setWordWrap(true);
  column->addLayout(top);
  column->addWidget(box_, 1);
  column->addWidget(verdict_);
  column->addWidget(table_);
  AddExports();  // its shortcuts are those of the panel, not of the main window
  setWidget(middle);
}

void PolesPanel::AddExports() {
  new ExportMenu(
      *box_, {QStringLiteral("Poles"), QStringLiteral("poles"),
              [this] { return PolePicture(box_->Map(), box_->View()); }, [this] { return Csv(); }});
}

void PolesPanel::AddTo(QMenu& menu) {
  QAction* const open = toggleViewAction();
  open->setObjectName(QStringLiteral("MIPoles"));
  open->setText(QStringLiteral("P&oles"));
  open->setToolTip(QStringLiteral("The loop's poles, which move with the constants"));
  menu.addSeparator();
  menu.addAction(open);
  QMenu* const loci = menu.addMenu(QStringLiteral("&Root Locus of"));
  loci->setObjectName(QStringLiteral("MLocus"));
  connect(loci, &QMenu::aboutToShow, this, [this, loci] { FillLoci(*loci); });
}

void PolesPanel::FillLoci(QMenu& menu) {
  menu.clear();
  for (int i = 0; i < constants_->count(); ++i) {
    const QString name = constants_->itemText(i);
    QAction* const item =
        menu.addAction(QString(name).replace(u'&', QStringLiteral("&&")), this,
                       [this, name, i] { ShowLocus(i > 0 ? name.toStdString() : std::string()); });
    item->setCheckable(true);
    item->setChecked(i == constants_->currentIndex());
  }
}

void PolesPanel::SetLook(const TraceLook& look) {
  box_->SetLook(look);
}

void PolesPanel::ShowLocus(const std::string& constant) {
  const int index = constants_->findText(QString::fromStdString(constant));
  constants_->setCurrentIndex(std::max(index, 0));
  show();
  raise();
  BeginLocus();
}

void PolesPanel::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  if (!std::exchange(placed_, true)) QTimer::singleShot(0, this, &PolesPanel::Place);
  theory_.SetWanted(true);
  Follow();
}

// As long as the user has not said: beside the instruments where that leaves room for them.
void PolesPanel::Place() {
  if (dock_.width() - Narrow >= Instruments) {
    dock_.resizeDocks({this}, {std::clamp(dock_.width() / 3, Narrow, Wide)}, Qt::Horizontal);
    return;
  }
  setFloating(true);
  resize(minimumSizeHint().expandedTo({Narrow, 0}));
  move(OnDisplay(dock_.mapToGlobal(dock_.rect().bottomRight()), *this));
}

void PolesPanel::hideEvent(QHideEvent* event) {
  QDockWidget::hideEvent(event);
  theory_.SetWanted(false);
}

// The constant that a loop's locus is over is that of its next text, too.
void PolesPanel::TakeModel() {
  const QString before = session_.IsApplying() ? constants_->currentText() : NoLocus;
  constants_->clear();
  constants_->addItem(NoLocus);
  for (const Constant* constant : session_.Model()->Bench().Constants()) {
    if (RootLocus::CanVary(*constant)) {
      constants_->addItem(QString::fromStdString(constant->Name()));
    }
  }
  constants_->setCurrentIndex(std::max(constants_->findText(before), 0));
}

// The locus is over one constant: where another one has moved it is another.
void PolesPanel::Follow() {
  const ModelTheory* const model = theory_.Model();
  if (!model || (locus_ && !locus_->IsCurrent())) locus_.reset();
  if (!model || !isVisible()) return;
  if (!locus_ && constants_->currentIndex() > 0) return BeginLocus();
  ShowPicture();
}

void PolesPanel::BeginLocus() {
  locus_.reset();
  const ModelTheory* const model = theory_.Model();
  if (model && constants_->currentIndex() > 0) {
    const std::string name = constants_->currentText().toStdString();
    locus_ = std::make_unique<RootLocus>(*model, *session_.Model()->Bench().FindConst(name));
    goOn_.start(0);
  }
  ShowPicture();
}

void PolesPanel::GoOn() {
  if (!locus_ || locus_->Done() || !isVisible()) return;
  QElapsedTimer timer;
  timer.start();
  while (!locus_->Done() && timer.elapsed() < SliceMilliseconds) locus_->Go();
  if (locus_->Done() || shown_.elapsed() > FrameMilliseconds) ShowPicture();
  if (!locus_->Done()) goOn_.start(0);
}

void PolesPanel::ShowPicture() {
  shown_.start();
  const ModelTheory* const model = theory_.Model();
  if (!model || model->Revision() == 0) return;
  PoleMap map;
  std::vector<Root> poles;
  QString verdict = QStringLiteral("No poles: %1.").arg(QString::fromStdString(model->Fault()));
  if (const LinearModel* const linear = model->Linear()) {
    verdict = QString::fromStdString(linear->Stability().Text);
    map.Ts = linear->System().Ts;
    poles = linear->Poles();
    if (locus_) {
      map.Ways = locus_->Ways();
      map.Varied = locus_->Name() + " from " + FormatEdit(locus_->From()) + " to " +
                   FormatEdit(locus_->To());
    }
  }
  for (const Root& pole : poles) map.Poles.push_back(pole.Value);
  box_->Show(std::move(map));
  ShowPoles(poles);
  verdict_->setText(verdict);
}

void PolesPanel::ShowPoles(const std::vector<Root>& poles) {
  rows_.clear();
  QList<QStringList> lines;
  for (const Root& pole : poles) {
    if (pole.Value.imag() >= 0.0) lines << RowOf(pole);
    rows_.push_back(static_cast<int>(lines.size()) - 1);
  }
  table_->setRowCount(static_cast<int>(lines.size()));
  for (int row = 0; row < table_->rowCount(); ++row) {
    for (int column = 0; column < table_->columnCount(); ++column) {
      if (!table_->item(row, column)) {
        table_->setItem(row, column, new QTableWidgetItem);
        table_->item(row, column)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      }
      table_->item(row, column)->setText(lines[row][column]);
    }
  }
}

void PolesPanel::ShowPole(int pole) {
  if (pole < 0 || pole >= static_cast<int>(rows_.size())) {
    table_->clearSelection();
  } else {
    table_->selectRow(rows_[static_cast<std::size_t>(pole)]);
  }
}

std::string PolesPanel::Csv() const {
  if (locus_) return locus_->Csv();
  std::string text = CsvLine({"Real", "Imaginary"});
  for (const std::complex<double> pole : box_->Map().Poles) {
    text += CsvLine({FormatShortest(pole.real()), FormatShortest(pole.imag() + 0.0)});
  }
  return text;
}

}  // namespace torvane
