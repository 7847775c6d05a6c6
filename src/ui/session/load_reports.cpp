#include "ui/session/load_reports.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace torvane {

LoadReports::LoadReports() : outer_(InstallMessageSink(this)) {}

LoadReports::~LoadReports() {
  Release();
}

void LoadReports::Release() {
  if (outer_) InstallMessageSink(outer_);
  outer_ = nullptr;
}

void LoadReports::Show(MessageKind kind, const std::string& text) {
  if (!outer_) return;
  if (shown_ < ShownOneByOne || kind == MessageKind::FatalError) {
    ++shown_;
    outer_->Show(kind, text);
    return;
  }
  heldBack_ += QString::fromStdString(text).replace(u'\r', u'\n');
}

bool LoadReports::Ask(MessageKind kind, const std::string& text) {
  return outer_ && outer_->Ask(kind, text);
}

void LoadReports::EndApplication() {
  if (outer_) outer_->EndApplication();
}

void LoadReports::Finish(QWidget* parent) {
  Release();
  if (heldBack_.isEmpty()) return;
  QDialog box(parent);
  box.setObjectName(QStringLiteral("LoadReportBox"));
  box.setWindowTitle(QString::fromLatin1(MessageCaption(MessageKind::Error)));
  auto* layout = new QVBoxLayout(&box);
  layout->addWidget(
      new QLabel(QStringLiteral("The file gave %1 more reports:").arg(heldBack_.size())));
  auto* list = new QPlainTextEdit(heldBack_.join(QStringLiteral("\n\n")));
  list->setReadOnly(true);
  list->setAccessibleName(QStringLiteral("Reports"));
  layout->addWidget(list);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
  layout->addWidget(buttons);
  box.resize(640, 400);
  box.exec();
}

}  // namespace torvane
