#include "ui/desk/loop_change_bar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "ui/session/loop_draft.h"

namespace torvane {

LoopChangeBar::LoopChangeBar(LoopDraft& draft) : draft_(draft), text_(new QLabel) {
  setObjectName(QStringLiteral("LoopChangeBar"));
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::ToolTipBase);
  text_->setObjectName(QStringLiteral("LLoopChange"));
  text_->setForegroundRole(QPalette::ToolTipText);
  text_->setTextFormat(Qt::PlainText);
  text_->setWordWrap(true);
  auto* again = new QPushButton(QStringLiteral("Read &Again"));
  again->setObjectName(QStringLiteral("SBReadAgain"));
  again->setToolTip(QStringLiteral(
      "Takes what the file holds now; Ctrl+Z in the text goes back to what it was here"));
  auto* ignore = new QPushButton(QStringLiteral("&Ignore"));
  ignore->setObjectName(QStringLiteral("SBIgnoreFile"));
  ignore->setToolTip(QStringLiteral("Goes on with the text as it is here"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(8, 3, 8, 3);
  row->addWidget(text_, 1);
  row->addWidget(again);
  row->addWidget(ignore);
  connect(again, &QAbstractButton::clicked, this, &LoopChangeBar::ReadAgainAsked);
  connect(ignore, &QAbstractButton::clicked, &draft_, &LoopDraft::Ignore);
  connect(&draft_, &LoopDraft::FileChanged, this, &LoopChangeBar::Follow);
  hide();
}

void LoopChangeBar::Follow() {
  const QString file = QFileInfo(draft_.Path()).fileName();
  text_->setText(QStringLiteral("Another program has changed %1.").arg(file));
  setVisible(draft_.ChangedElsewhere());
}

}  // namespace torvane
