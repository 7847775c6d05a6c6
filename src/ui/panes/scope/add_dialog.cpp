#include "ui/panes/scope/add_dialog.h"

#include <QListWidget>
#include <utility>

#include "ui_add_dialog.h"

namespace torvane {

namespace {

void Move(QListWidget& from, QListWidget& to, bool selectedOnly) {
  for (int row = 0; row < from.count(); ++row) {
    const QListWidgetItem& item = *from.item(row);
    if (!selectedOnly || item.isSelected()) to.addItem(item.text());
  }
  // From the end, so that the rows still to be looked at keep their numbers.
  for (int row = from.count() - 1; row >= 0; --row) {
    if (!selectedOnly || from.item(row)->isSelected()) delete from.takeItem(row);
  }
}

}  // namespace

AddDialog::AddDialog(std::vector<ShownItem> items, QWidget* parent)
    : QDialog(parent), items_(std::move(items)), ui_(std::make_unique<Ui::AddDialog>()) {
  ui_->setupUi(this);
  QListWidget& showing = *ui_->LBShowing;
  QListWidget& notShowing = *ui_->LBNotShowing;
  for (const ShownItem& item : items_) {
    (item.Showing ? showing : notShowing).addItem(QString::fromStdString(item.Name));
  }
  const auto moves = [this](QAbstractButton* button, QListWidget& from, QListWidget& to,
                            bool selectedOnly) {
    connect(button, &QAbstractButton::clicked, this,
            [&from, &to, selectedOnly] { Move(from, to, selectedOnly); });
  };
  moves(ui_->BShowSelected, notShowing, showing, true);
  moves(ui_->BSelectAll, notShowing, showing, false);
  moves(ui_->BUnshowSelected, showing, notShowing, true);
  moves(ui_->BUnshowAll, showing, notShowing, false);
  connect(&showing, &QListWidget::itemDoubleClicked, ui_->BUnshowSelected, &QPushButton::click);
  connect(&notShowing, &QListWidget::itemDoubleClicked, ui_->BShowSelected, &QPushButton::click);
  connect(ui_->BOkay, &QAbstractButton::clicked, this, &QDialog::accept);
  connect(ui_->BCancel, &QAbstractButton::clicked, this, &QDialog::reject);
}

AddDialog::~AddDialog() = default;

void AddDialog::Apply() {
  const auto listed = [](const QListWidget& list, const ShownItem& item) {
    return !list.findItems(QString::fromStdString(item.Name), Qt::MatchExactly).isEmpty();
  };
  for (const ShownItem& item : items_) {
    if (listed(*ui_->LBShowing, item)) item.SetShowing(true);
    if (listed(*ui_->LBNotShowing, item)) item.SetShowing(false);
  }
}

}  // namespace torvane
