#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"

namespace torvane {

/// A model that a program offers.
struct CatalogueEntry {
  std::string Name;
  std::string Source;  ///< where it comes from: its class, or the file that says what it is
  /// Builds it under the name given; nothing after a report of its own of why it cannot be built.
  std::function<std::unique_ptr<ZelModel>(const std::string& name)> Make;
};

/// The models that a program offers, each under a name of its own. The built-in ones come first, so
/// that their positions stay what they are.
class Catalogue {
 public:
  /// The built-in models.
  Catalogue();

  const std::vector<CatalogueEntry>& Entries() const { return entries_; }
  std::vector<std::string> Names() const;
  /// nullptr when no model has that name.
  const CatalogueEntry* Find(std::string_view name) const;
  /// The names that begin with the text, without regard to case; none with an empty one.
  std::vector<std::string> NamesFrom(const std::string& beginning) const;

  /// Offers one more model, behind the others; false when its name is taken.
  bool Add(CatalogueEntry entry);

  /// Builds the model of that name. Any other name is a fatal error, an exception that its making
  /// throws is reported; neither gives a model.
  std::unique_ptr<ZelModel> Load(const std::string& name) const;

 private:
  std::vector<CatalogueEntry> entries_;
};

// The built-in models alone, by position.

/// Their names.
const std::vector<std::string>& ModelNames();

/// Position of the name, or -1.
int FindModel(const std::string& name);

/// Builds the model at that position. Any other is a fatal error and gives no model.
std::unique_ptr<ZelModel> LoadModel(int index);

}  // namespace torvane
