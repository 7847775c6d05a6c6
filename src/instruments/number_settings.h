#pragma once

#include <span>
#include <string>

#include "core/files/record.h"
#include "core/text.h"

namespace torvane {

/// A setting of an instrument that is a number: its keyword in a model file and its accessors.
template <class Engine>
struct NumberSetting {
  const char* Keyword;
  double (Engine::*Value)() const;
  void (Engine::*Set)(double);
};

/// Writes a record a number, in the table's order.
template <class Engine>
void SaveNumbers(RecordWriter& writer, const Engine& engine,
                 std::span<const NumberSetting<Engine>> numbers,
                 std::string (*format)(double) = FormatRecordNumber) {
  for (const auto& number : numbers) {
    writer.Write(number.Keyword, {format((engine.*number.Value)())});
  }
}

/// Takes a record of four entries; false when its keyword is not in the table. A text that is no
/// number is reported.
template <class Engine>
bool LoadNumber(const Record& record, Engine& engine,
                std::span<const NumberSetting<Engine>> numbers) {
  for (const auto& number : numbers) {
    if (record.Keyword() != number.Keyword) continue;
    if (const auto value = ToNumber(record.Fields[3])) (engine.*number.Set)(*value);
    return true;
  }
  return false;
}

}  // namespace torvane
