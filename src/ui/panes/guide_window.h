#pragma once

#include <QDialog>

#include "ui/session/data_folder.h"

class QTextBrowser;

namespace torvane {

/// The guide for new users, as it stands in docs/guide.md. Says so when it is missing.
class GuideF : public QDialog {
 public:
  GuideF(const DataFolder& folder, QWidget* parent);

 private:
  QTextBrowser* text_;
};

}  // namespace torvane
