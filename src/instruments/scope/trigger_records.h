#pragma once

#include "core/files/record.h"
#include "instruments/scope/scope_trigger.h"

namespace torvane {

/// Entries of a record "Scope,name,Trigger,key,value".
inline constexpr std::size_t TriggerEntries = 5;

/// The records of a trigger's settings, source channel first.
void SaveTrigger(RecordWriter& writer, const ZelTrigger& trigger);

/// Takes a record of TriggerEntries entries, other than that of the source channel; false when its
/// key is unknown.
bool LoadTrigger(const Record& record, ZelTrigger& trigger);

}  // namespace torvane
