#include "cli/model/model_file_loading.h"

#include <set>

#include "cli/command_error.h"
#include "cli/model/loop_loading.h"
#include "cli/model/model_file_check.h"
#include "core/messages.h"
#include "models/catalogue.h"
#include "models/catalogue_host.h"

namespace torvane::cli {
namespace {

/// Says in every report which line it is about, and keeps which lines have one.
class ConsoleHost final : public CatalogueHost {
 public:
  ConsoleHost(std::string path, Console& console) : path_(std::move(path)), console_(console) {}
  ~ConsoleHost() override { console_.SetPlace(""); }

  void AtLine(int number) override {
    if (console_.Reports() > reports_) reported_.insert(line_);
    reports_ = console_.Reports();
    line_ = number;
    console_.SetPlace(number > 0 ? path_ + ":" + std::to_string(number) + ": " : "");
  }

  const std::set<int>& Reported() const { return reported_; }

 private:
  std::string path_;
  Console& console_;
  int line_ = 0;
  int reports_ = 0;
  std::set<int> reported_;
};

void Load(const std::string& path, ConsoleHost& host, const std::string& text, Console& console) {
  AddLoopOf(path, text, host.Models, console);
  // Records may stand before the line that names their model.
  const std::string name = ModelNameIn(text);
  if (host.InCatalogue(name)) host.ChangeModel(name);
  if (!LoadModelText(text, host)) throw FileError("");
  if (!host.Model) throw FileError(path + " names no model");
}

}  // namespace

std::string ReadModelFile(const std::string& path) {
  std::string text;
  if (!ReadModelText(path, text)) throw FileError("");
  return text;
}

std::unique_ptr<ZelModel> OpenModelText(const std::string& path, const std::string& text,
                                        Console& console) {
  ConsoleHost host(path, console);
  Load(path, host, text, console);
  return std::move(host.Model);
}

std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Console& console) {
  return OpenModelText(path, ReadModelFile(path), console);
}

void CheckModelFile(const std::string& path, Console& console) {
  ConsoleHost host(path, console);
  const std::string text = ReadModelFile(path);
  Load(path, host, text, console);
  RemarkOnLines(text, *host.Model, host.Reported(), [&](int line, const std::string& remark) {
    host.AtLine(line);
    Note(remark);
  });
}

}  // namespace torvane::cli
