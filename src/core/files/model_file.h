#pragma once

#include <string>
#include <string_view>

#include "core/files/input_file.h"
#include "core/model.h"

namespace torvane {

/// Title of the program, by which its files are told from others.
inline constexpr const char* ApplicationTitle = "Torvane--Melkorin, 2nd Edition";

/// What loading a file needs of the program that loads it.
class ModelFileHost {
 public:
  virtual ~ModelFileHost() = default;

  /// The model that records are read into; nullptr when there is none yet, then records before the
  /// file's "Model" line have no effect.
  virtual ZelModel* CurrentModel() = 0;

  virtual bool InCatalogue(const std::string& model) const = 0;

  /// Whether the current model's values may be lost. Asked before anything is changed.
  virtual bool MayDiscard() { return true; }

  /// Builds the model and makes it the current one, in place of the old; false ends the loading.
  /// Questions have been asked before.
  virtual bool ChangeModel(const std::string& name) = 0;

  /// Adds a meter to the current model; nullptr after a report when there can be no more.
  virtual Instrument* AddMeter(const std::string& name) = 0;

  /// Whether windows are to go where the file says.
  virtual bool RestoresWindows() const { return true; }

  /// Reports that follow are about this line of the file, counted from 1; 0: about no line.
  virtual void AtLine(int /*number*/) {}
};

/// What has come of reading a file.
struct LoadResult {
  bool AtEnd = false;       ///< it was read, and nothing stopped the loading before its end
  bool HasTitle = false;    ///< it has the program's title
  bool HasModel = false;    ///< it names a model, which is current now
  bool Recognised = false;  ///< a line of it meant something to the program or to the model

  /// It is a model's file through and through, one that may be saved over.
  bool IsModelFile() const { return AtEnd && HasTitle && HasModel; }
  explicit operator bool() const { return AtEnd; }
};

/// Reads the file into the host's model. Reports what is wrong with it and goes on where that is
/// possible. Whatever has to be asked is asked before anything changes.
///
/// Constants that a file sets are no steps to undo: when it changes any, the history of earlier
/// steps, which led to other values, is forgotten.
LoadResult LoadModelFile(const std::string& path, ModelFileHost& host);

/// As LoadModelFile, of a file's text.
LoadResult LoadModelText(std::string_view text, ModelFileHost& host);

/// The file's text. A file that cannot be read, is above MaxModelFileSize, has a line above
/// MaxModelLineLength or more lines (blank ones apart) or changes of model than a file may have is
/// reported and gives false; no more than that much of it is read. So is a pipe or a device that
/// stays silent for longer than the patience, milliseconds (InputFile).
bool ReadModelText(const std::string& path, std::string& text,
                   int patience = InputFile::WaitForEver);
inline constexpr std::size_t MaxModelFileSize = std::size_t{16} << 20U;
inline constexpr std::size_t MaxModelLineLength = std::size_t{64} << 10U;
inline constexpr int MaxModelLines = 20000;
inline constexpr int MaxModelChanges = 100;

/// Name in the text's first well-formed "Model" line; empty when there is none.
std::string ModelNameIn(std::string_view text);

/// Constants and instruments of the model as a file holds them.
std::string ModelFileText(const ZelModel& model);

/// ModelFileText without the places of windows: what counts as changed.
std::string SettingsText(const ZelModel& model);

/// Writes the model's file; the old one is replaced when the new one is complete. A failure is
/// reported, gives false and leaves the old file as it was.
bool SaveModelFile(const ZelModel& model, const std::string& path);

}  // namespace torvane
