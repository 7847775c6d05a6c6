#include "ui/panes/analyser/response_units_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <utility>

namespace torvane {

namespace {

struct UnitRow {
  const char* Label;
  const char* Name;
  std::vector<const char*> Units;
};

}  // namespace

ResponseUnitsDialog::ResponseUnitsDialog(std::string file, ResponseText text, QWidget* parent)
    : QDialog(parent), file_(std::move(file)), text_(std::move(text)), question_(new QLabel) {
  setObjectName(QStringLiteral("ResponseUnitsDialog"));
  setWindowTitle(QStringLiteral("Units of the Response"));
  auto* form = new QFormLayout(this);
  question_->setWordWrap(true);
  // Its title bar has buttons beside the title.
  question_->setMinimumWidth(2 * fontMetrics().horizontalAdvance(windowTitle()));
  form->addRow(question_);
  Ask();
  const std::array<UnitRow, 3> rows{
      UnitRow{"&Frequency",
              "CmBFrequencyUnit",
              {"as the file says", "mHz", "Hz", "kHz", "MHz", "rad/s"}},
      UnitRow{"&Gain", "CmBGainUnit", {"as the file says", "dB", "ratio"}},
      UnitRow{"&Phase", "CmBPhaseUnit", {"as the file says", "deg", "rad"}}};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    units_[i] = new QComboBox;
    units_[i]->setObjectName(QLatin1String(rows[i].Name));
    for (const char* unit : rows[i].Units) units_[i]->addItem(QLatin1String(unit));
    form->addRow(QLatin1String(rows[i].Label), units_[i]);
  }
  // What is asked for has an answer; a ratio and degrees are what calculators write.
  if (text_.GainUnitMissing) units_[1]->setCurrentIndex(2);
  if (text_.PhaseUnitMissing) units_[2]->setCurrentIndex(1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &ResponseUnitsDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  form->addRow(buttons);
}

void ResponseUnitsDialog::accept() {
  text_ = ReadResponseFile(file_, Hints());
  if (text_.Fault.empty()) {
    QDialog::accept();
  } else {
    Ask();
  }
}

void ResponseUnitsDialog::Ask() {
  question_->setText(QString::fromStdString(text_.Fault) +
                     QStringLiteral(".\nIn which units is it?"));
}

ResponseHints ResponseUnitsDialog::Hints() const {
  ResponseHints hints;
  for (std::size_t i = 0; i < units_.size(); ++i) {
    hints.Units[i] = ResponseUnitOf(units_[i]->currentText().toStdString());
  }
  return hints;
}

}  // namespace torvane
