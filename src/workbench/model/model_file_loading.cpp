#include "workbench/model/model_file_loading.h"

#include <set>

#include "core/messages.h"
#include "models/catalogue.h"
#include "models/catalogue_host.h"
#include "workbench/model/loop_loading.h"
#include "workbench/model/model_file_check.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

/// Says in every report which line it is about, and keeps which lines have one.
class SupervisorHost final : public CatalogueHost {
 public:
  SupervisorHost(std::string path, Supervisor& supervisor)
      : path_(std::move(path)), supervisor_(supervisor) {}
  ~SupervisorHost() override { supervisor_.SetPlace(""); }

  void AtLine(int number) override {
    if (supervisor_.Reports() > reports_) reported_.insert(line_);
    reports_ = supervisor_.Reports();
    line_ = number;
    supervisor_.SetPlace(number > 0 ? path_ + ":" + std::to_string(number) + ": " : "");
  }

  const std::set<int>& Reported() const { return reported_; }

 private:
  std::string path_;
  Supervisor& supervisor_;
  int line_ = 0;
  int reports_ = 0;
  std::set<int> reported_;
};

void Load(const std::string& path, SupervisorHost& host, const std::string& text,
          Supervisor& supervisor, const std::optional<LoopSource>& loop = {}) {
  if (loop) {
    AddLoop(ModelNameIn(text), loop->Path, loop->Text, host.Models, supervisor);
  } else {
    AddLoopOf(path, text, host.Models, supervisor);
  }
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
                                        Supervisor& supervisor,
                                        const std::optional<LoopSource>& loop) {
  SupervisorHost host(path, supervisor);
  Load(path, host, text, supervisor, loop);
  return std::move(host.Model);
}

std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Supervisor& supervisor) {
  return OpenModelText(path, ReadModelFile(path), supervisor);
}

void CheckModelFile(const std::string& path, Supervisor& supervisor) {
  SupervisorHost host(path, supervisor);
  const std::string text = ReadModelFile(path);
  Load(path, host, text, supervisor);
  RemarkOnLines(text, *host.Model, host.Reported(), [&](int line, const std::string& remark) {
    host.AtLine(line);
    Note(remark);
  });
}

}  // namespace torvane
