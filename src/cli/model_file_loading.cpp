#include "cli/model_file_loading.h"

#include "cli/command_error.h"
#include "models/catalogue.h"
#include "models/model_file_host.h"

namespace torvane::cli {
namespace {

/// Says in every report which line it is about.
class ConsoleHost final : public CatalogueHost {
 public:
  ConsoleHost(std::string path, Console& console) : path_(std::move(path)), console_(console) {}
  ~ConsoleHost() override { console_.SetPlace(""); }

  void AtLine(int number) override {
    console_.SetPlace(number > 0 ? path_ + ":" + std::to_string(number) + ": " : "");
  }

 private:
  std::string path_;
  Console& console_;
};

}  // namespace

std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Console& console) {
  ConsoleHost host(path, console);
  std::string text;
  if (!ReadModelText(path, text)) throw FileError("");
  // Records may stand before the line that names their model.
  const std::string name = ModelNameIn(text);
  if (host.InCatalogue(name)) host.ChangeModel(name);
  if (!LoadModelText(text, host)) throw FileError("");
  if (!host.Model) throw FileError(path + " names no model");
  return std::move(host.Model);
}

}  // namespace torvane::cli
