#include "instruments/scope/trigger_records.h"

#include <array>

#include "core/numeric.h"
#include "core/text.h"

namespace torvane {
namespace {

constexpr const char* Keyword = "Trigger";

struct ModeKey {
  const char* Key;
  SweepMode Mode;
};
constexpr std::array ModeKeys{
    ModeKey{"AutoMode", SweepMode::Auto},
    ModeKey{"ContinuousMode", SweepMode::Cont},
    ModeKey{"NormalMode", SweepMode::Normal},
};

bool LoadMode(const std::string& key, bool on, ZelTrigger& trigger) {
  for (const ModeKey& mode : ModeKeys) {
    if (key != mode.Key) continue;
    if (on) trigger.SetMode(mode.Mode);
    return true;
  }
  return false;
}

bool LoadFlag(const std::string& key, bool on, ZelTrigger& trigger) {
  if (key == "PosSlope") {
    trigger.SetPositiveSlope(on);
  } else if (key == "RollMode") {
    trigger.SetRoll(on);
  } else if (key == "InitDelay") {
    trigger.SetInitialDelay(on);
  } else if (key == "CountEvents") {
    trigger.SetCountEvents(on);
  } else if (key == "DelayAfter") {
    trigger.SetDelayAfter(on);
  } else {
    return false;
  }
  return true;
}

bool LoadValue(const std::string& key, const std::string& text, ZelTrigger& trigger) {
  if (key == "NumEvents") {
    if (const auto count = ToInteger(text)) trigger.SetNumberOfEvents(*count);
    return true;
  }
  if (key != "Level" && key != "Position" && key != "TInitDelay" && key != "TDelayAfter") {
    return false;
  }
  const auto value = ToNumber(text);
  if (!value) return true;
  if (key == "Level") {
    trigger.SetLevel(*value);
  } else if (key == "Position") {
    trigger.SetPosition(*value);
  } else if (key == "TInitDelay") {
    trigger.SetInitialDelayTime(*value);
  } else {
    trigger.SetDelayAfterTime(*value);
  }
  return true;
}

}  // namespace

void SaveTrigger(RecordWriter& writer, const ZelTrigger& trigger) {
  writer.Write(Keyword, {"Channel", trigger.Source().Name()});
  writer.Write(Keyword, {"PosSlope", FlagText(trigger.PositiveSlope())});
  writer.Write(Keyword, {"Level", FormatShortest(trigger.Level())});
  writer.Write(Keyword, {"Position", FormatShortest(trigger.Position())});
  for (const ModeKey& mode : ModeKeys) {
    writer.Write(Keyword, {mode.Key, FlagText(trigger.Mode() == mode.Mode)});
  }
  writer.Write(Keyword, {"RollMode", FlagText(trigger.Roll())});
  writer.Write(Keyword, {"InitDelay", FlagText(trigger.InitialDelay())});
  writer.Write(Keyword, {"TInitDelay", FormatShortest(trigger.InitialDelayTime())});
  writer.Write(Keyword, {"CountEvents", FlagText(trigger.CountEvents())});
  writer.Write(Keyword, {"NumEvents", std::to_string(trigger.NumberOfEvents())});
  writer.Write(Keyword, {"DelayAfter", FlagText(trigger.DelayAfter())});
  writer.Write(Keyword, {"TDelayAfter", FormatShortest(trigger.DelayAfterTime())});
}

bool LoadTrigger(const Record& record, ZelTrigger& trigger) {
  const std::string& key = record.Field(3);
  const std::string& value = record.Field(4);
  return LoadMode(key, IsOn(value), trigger) || LoadFlag(key, IsOn(value), trigger) ||
         LoadValue(key, value, trigger);
}

}  // namespace torvane
