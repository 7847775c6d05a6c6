#pragma once

#include <QStringList>

#include "core/messages.h"

class QWidget;

namespace torvane {

/// Message sink while a file loads: the first ten reports appear one by one, the rest together in
/// one box with a scroll bar, so that a broken file cannot bury its user. Questions are asked as
/// ever.
class LoadReports : public MessageSink {
 public:
  static constexpr int ShownOneByOne = 10;

  LoadReports();
  ~LoadReports() override;

  void Show(MessageKind kind, const std::string& text) override;
  bool Ask(MessageKind kind, const std::string& text) override;
  void EndApplication() override;

  /// Ends the watch and shows what has been held back.
  void Finish(QWidget* parent);

 private:
  void Release();

  MessageSink* outer_;
  int shown_ = 0;
  QStringList heldBack_;
};

}  // namespace torvane
