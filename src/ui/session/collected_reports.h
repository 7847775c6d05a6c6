#pragma once

#include <string>
#include <vector>

#include "core/messages.h"

namespace torvane {

/// Message sink while a file loads: reports wait until the loading is over, so that no box opens
/// over what is half done. Questions are asked at once; whoever loads asks before it changes
/// anything. A broken file cannot bury its user: few reports are shown one by one, and of more than
/// a thousand the rest is only counted.
class CollectedReports final : public MessageSink {
 public:
  static constexpr std::size_t ShownOneByOne = 10;
  static constexpr std::size_t MostKept = 1000;

  CollectedReports();
  ~CollectedReports() override;
  CollectedReports(const CollectedReports&) = delete;
  CollectedReports& operator=(const CollectedReports&) = delete;

  void Show(MessageKind kind, const std::string& text) override;
  bool Ask(MessageKind kind, const std::string& text) override;
  void EndApplication() override { ends_ = true; }

  struct Rest {
    std::vector<std::string> Texts;
    std::size_t Count = 0;  ///< those that were not kept included
  };
  /// Ends the collecting: the first reports go where reports go, the others come back.
  Rest Forward();

 private:
  struct Report {
    MessageKind Kind;
    std::string Text;
  };

  MessageSink* outer_;
  std::vector<Report> reports_;
  std::size_t count_ = 0;
  bool ends_ = false;
};

}  // namespace torvane
