#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "instruments/generator/wave_table.h"

namespace torvane {

/// The files that generators play, each read once however many models play it.
class WaveFiles {
 public:
  /// "FILE" or, of one with several columns of values, "FILE:COLUMN". What cannot be read or played
  /// is a WorkFault of WorkFault::Kind::File.
  std::shared_ptr<const WaveTable> Table(const std::string& name);

  /// From now on that name stands for the table.
  void Keep(const std::string& name, std::shared_ptr<const WaveTable> table) {
    tables_[name] = std::move(table);
  }

  /// The file of such a name, and its column, empty when it names none.
  static std::pair<std::string, std::string> Split(const std::string& name);

 private:
  std::map<std::string, std::shared_ptr<const WaveTable>> tables_;
};

}  // namespace torvane
