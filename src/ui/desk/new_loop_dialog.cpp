#include "ui/desk/new_loop_dialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

#include "loops/loop_file.h"
#include "loops/parser.h"
#include "ui/session/loop_draft.h"

namespace torvane {

namespace {

constexpr QSize NewLoopSize(700, 420);
const QString FirstTemplate = QStringLiteral("FirstLoop.mo");

QString TemplateText(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? LoopDraft::Decoded(file.readAll().toStdString())
                                        : QString();
}

// What stands behind the name, in quotation marks.
QString DescriptionIn(const QString& text) {
  static const QRegularExpression description(QStringLiteral(R"(model\s+\S+\s*"([^"]*)\")"));
  return description.match(text).captured(1);
}

}  // namespace

NewLoopDialog::NewLoopDialog(const QString& templates, const QString& folder, QWidget* parent)
    : QDialog(parent),
      templates_(templates),
      folder_(folder),
      list_(new QListWidget),
      name_(new QLineEdit(QStringLiteral("MyLoop"))),
      fault_(new QLabel) {
  setObjectName(QStringLiteral("NewLoopDialog"));
  setWindowTitle(QStringLiteral("New Loop"));
  auto* caption = new QLabel(QStringLiteral("&Name of the loop and of its file"));
  caption->setBuddy(name_);
  name_->setObjectName(QStringLiteral("ENewLoop"));
  name_->setToolTip(QStringLiteral("Letters, digits and _, as the loop's text has it"));
  auto* begins = new QLabel(QStringLiteral("It &begins as"));
  begins->setBuddy(list_);
  list_->setObjectName(QStringLiteral("LBTemplates"));
  list_->setToolTip(QStringLiteral("The loop whose text the new one begins with"));
  fault_->setObjectName(QStringLiteral("LNewLoop"));
  fault_->setTextFormat(Qt::PlainText);
  fault_->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  auto* create = buttons->addButton(QStringLiteral("C&reate"), QDialogButtonBox::AcceptRole);
  create->setObjectName(QStringLiteral("BCreateLoop"));
  create_ = create;
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(name_, &QLineEdit::textChanged, this, &NewLoopDialog::Check);
  connect(list_, &QListWidget::currentRowChanged, this, &NewLoopDialog::Check);
  connect(list_, &QListWidget::itemDoubleClicked, create, &QAbstractButton::click);
  auto* column = new QVBoxLayout(this);
  for (QWidget* part : std::initializer_list<QWidget*>{caption, name_, begins}) {
    column->addWidget(part);
  }
  column->addWidget(list_, 1);
  column->addWidget(fault_);
  column->addWidget(buttons);
  create->setDefault(true);
  resize(NewLoopSize);
  Fill();
  name_->selectAll();
  name_->setFocus();
  Check();
}

// The commented one first.
void NewLoopDialog::Fill() {
  const QDir folder(templates_);
  QStringList files = folder.entryList({QStringLiteral("*.mo")}, QDir::Files, QDir::Name);
  if (templates_.isEmpty()) files.clear();
  if (files.removeOne(FirstTemplate)) files.prepend(FirstTemplate);
  for (const QString& file : files) {
    const QString text = TemplateText(folder.filePath(file));
    if (text.isEmpty()) continue;
    auto* item = new QListWidgetItem(
        QStringLiteral("%1: %2").arg(QFileInfo(file).baseName(), DescriptionIn(text)));
    item->setData(Qt::UserRole, text);
    list_->addItem(item);
  }
  list_->setCurrentRow(0);
}

QString NewLoopDialog::Path() const {
  return QStringLiteral("%1/%2.mo").arg(folder_, name_->text());
}

// The name stands at the model's beginning and at its end.
QString NewLoopDialog::Text() const {
  const auto* const item = list_->currentItem();
  QString text = item ? item->data(Qt::UserRole).toString() : QString();
  const QString old =
      QRegularExpression::escape(QString::fromStdString(loops::LoopNameIn(text.toStdString())));
  for (const char* word : {"model", "end"}) {
    const QRegularExpression named(
        QStringLiteral(R"(\b(%1\s+)%2\b)").arg(QLatin1String(word), old));
    text.replace(named, QStringLiteral("\\1") + name_->text());
  }
  return text;
}

void NewLoopDialog::Check() {
  static const QRegularExpression identifier(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
  const QString name = name_->text();
  QString fault;
  if (!identifier.match(name).hasMatch()) {
    fault = QStringLiteral("A name is letters, digits and _, and begins with no digit.");
  } else if (loops::IsKeyword(name.toStdString())) {
    fault = QStringLiteral("\"%1\" is a word of the language.").arg(name);
  } else if (QFileInfo::exists(Path())) {
    fault = QStringLiteral("There is a file %1 already.").arg(Path());
  } else if (list_->count() == 0) {
    fault = QStringLiteral(
                "There is nothing that it could begin as: the loops that come with the program are "
                "missing%1. Open Loop... in the File menu takes a file that was written elsewhere.")
                .arg(templates_.isEmpty() ? QString() : QStringLiteral(" from ") + templates_);
  } else if (!list_->currentItem()) {
    fault = QStringLiteral("Choose what it begins as.");
  }
  fault_->setText(fault.isEmpty() ? QStringLiteral("Its file will be %1").arg(Path()) : fault);
  create_->setEnabled(fault.isEmpty());
}

}  // namespace torvane
