#include "ui/desk/report_list.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/messages.h"
#include "ui/session/box_queue.h"

namespace torvane {

namespace {

constexpr QSize ReportListSize(640, 400);

QDialog* MakeReportList(const ReportList& list, QWidget* over) {
  auto* box = new QDialog(over);
  box->setObjectName(list.Name);
  box->setWindowTitle(QString::fromLatin1(MessageCaption(MessageKind::Error)));
  auto* layout = new QVBoxLayout(box);
  auto* heading = new QLabel(list.Heading);
  heading->setTextFormat(Qt::PlainText);
  heading->setWordWrap(true);
  layout->addWidget(heading);
  auto* texts = new QPlainTextEdit(list.Texts);
  texts->setReadOnly(true);
  texts->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  texts->setLineWrapMode(QPlainTextEdit::NoWrap);
  texts->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  texts->setAccessibleName(QStringLiteral("Reports"));
  layout->addWidget(texts);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  QObject::connect(buttons, &QDialogButtonBox::accepted, box, &QDialog::accept);
  if (!list.Action.isEmpty()) {
    const auto* action = buttons->addButton(list.Action, QDialogButtonBox::ActionRole);
    QObject::connect(action, &QPushButton::clicked, box, &QDialog::accept);
    QObject::connect(action, &QPushButton::clicked, [act = list.Do] { act(); });
  }
  layout->addWidget(buttons);
  box->resize(ReportListSize);
  return box;
}

}  // namespace

void ShowReportList(const ReportList& list) {
  BoxQueue::OfApplication().Add(list.Texts,
                                [list](QWidget* over) { return MakeReportList(list, over); });
}

}  // namespace torvane
