#pragma once

#include <QString>
#include <functional>

namespace torvane {

/// A box with reports that can be copied.
struct ReportList {
  QString Name;     ///< the box's
  QString Heading;  ///< what they are about
  QString Texts;
  QString Action;  ///< a button for what can be done about it; empty for none
  std::function<void()> Do;
};

/// Shows it when the message loop next has control and no other box is open.
void ShowReportList(const ReportList& list);

}  // namespace torvane
