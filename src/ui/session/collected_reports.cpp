#include "ui/session/collected_reports.h"

#include <utility>

namespace torvane {

CollectedReports::CollectedReports() : outer_(InstallMessageSink(this)) {}

CollectedReports::~CollectedReports() {
  Forward();
}

void CollectedReports::Show(MessageKind kind, const std::string& text) {
  ++count_;
  if (reports_.size() < MostKept || kind == MessageKind::FatalError) {
    reports_.push_back({kind, text});
  }
}

bool CollectedReports::Ask(MessageKind kind, const std::string& text) {
  return outer_ && outer_->Ask(kind, text);
}

CollectedReports::Rest CollectedReports::Forward() {
  MessageSink* const outer = std::exchange(outer_, nullptr);
  if (!outer) return {};
  InstallMessageSink(outer);
  Rest rest;
  std::size_t shown = 0;
  for (Report& report : reports_) {
    if (shown < ShownOneByOne || report.Kind == MessageKind::FatalError) {
      ++shown;
      outer->Show(report.Kind, report.Text);
    } else {
      rest.Texts.push_back(std::move(report.Text));
    }
  }
  rest.Count = count_ - shown;
  if (ends_) outer->EndApplication();
  return rest;
}

}  // namespace torvane
