#include "workbench/model/wave_files.h"

#include <filesystem>

#include "workbench/work_fault.h"

namespace torvane {
std::pair<std::string, std::string> WaveFiles::Split(const std::string& name) {
  std::error_code failure;
  const auto colon = name.rfind(':');
  const bool whole = colon == std::string::npos || std::filesystem::exists(name, failure) ||
                     !std::filesystem::exists(name.substr(0, colon), failure);
  return whole ? std::pair{name, std::string()}
               : std::pair{name.substr(0, colon), name.substr(colon + 1)};
}

std::shared_ptr<const WaveTable> WaveFiles::Table(const std::string& name) {
  const auto known = tables_.find(name);
  if (known != tables_.end()) return known->second;
  const auto [file, column] = Split(name);
  WaveReading reading = ReadWaveFile(file, column);
  if (!reading.Table) throw WorkFault(WorkFault::Kind::File, reading.Fault);
  return tables_[name] = std::move(reading.Table);
}

}  // namespace torvane
