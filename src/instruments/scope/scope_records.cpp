// A scope's part of a model file.

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <sstream>
#include <utility>

#include "core/files/record.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/scope/scope.h"
#include "instruments/scope/trigger_records.h"

namespace torvane {
namespace {

constexpr const char* WrongCount = "Wrong number of entries in ";
constexpr const char* WrongFileCount = "File error:  wrong number entries in ";

// What no file keeps.
constexpr const char* SingleShotKeyword = "SingleShot";
constexpr const char* CursorsKeyword = "Cursors";
constexpr const char* KeptKeyword = "Kept";
constexpr const char* ColoursKeyword = "Colours";

// Of the records with a value for each setting of a channel or of the constants panel.
constexpr std::size_t ChannelEntries = 10;
constexpr std::size_t ConstFormEntries = 6;

void SaveChannel(RecordWriter& writer, const ZelChannel& channel) {
  writer.Write(
      "Channel",
      {channel.Name(), FlagText(channel.Displayed()), FormatShortest(channel.Vertical().Scale),
       FormatShortest(channel.Vertical().Offset), FlagText(channel.IsHorizontal()),
       FormatShortest(channel.Horizontal().Scale), FormatShortest(channel.Horizontal().Offset)});
}

}  // namespace

void ZelScope::SaveRecords(RecordWriter& writer) const {
  SaveDisplay(writer, Placement);
  SaveChannel(writer, TimeChannel());
  for (const auto& channel : Channels()) SaveChannel(writer, *channel);
  writer.Write("ConstForm", {FlagText(constForm_.Shown), std::to_string(constForm_.Width),
                             std::to_string(constForm_.NameWidth)});
  SaveTrigger(writer, *trigger_);
  writer.Write("Trigger", {"StopModel", FlagText(stopsModel_)});
}

void ZelScope::LoadRecord(const Record& record) {
  const std::string& keyword = record.Keyword();
  if (keyword == "Channel") {
    LoadChannel(record);
  } else if (keyword == "Trigger") {
    LoadTriggerRecord(record);
  } else if (keyword == "Display") {
    LoadDisplayReporting(record, Placement, WrongFileCount);
  } else if (keyword == "ConstForm") {
    LoadConstForm(record);
  } else {
    ReportUnknownRecord(record);
  }
}

void ZelScope::SaveState(RecordWriter& writer) const {
  SaveRecords(writer);
  writer.Write(SingleShotKeyword, {FlagText(singleShot_)});
  writer.Write(CursorsKeyword, {std::to_string(cursors_.Mode), std::to_string(cursors_.X[0]),
                                std::to_string(cursors_.X[1])});
  writer.Write(KeptKeyword,
               {std::to_string(kept_.Present().Count), std::to_string(kept_.Present().Shown)});
  std::string colours;
  for (const auto& channel : Channels())
    colours.append(std::to_string(channel->colour_)).append(" ");
  writer.Write(ColoursKeyword, {colours});
}

void ZelScope::LoadState(const Record& record) {
  restoring_ = true;
  if (record.Keyword() == SingleShotKeyword) {
    SetSingleShot(IsOn(record.Field(3)));
  } else if (record.Keyword() == CursorsKeyword) {
    LoadCursors(record);
  } else if (record.Keyword() == KeptKeyword) {
    LoadKept(record);
  } else if (record.Keyword() == ColoursKeyword) {
    LoadColours(record);
  } else {
    LoadRecord(record);
  }
}

void ZelScope::LoadChannel(const Record& record) {
  if (record.Fields.size() != ChannelEntries) {
    Error(WrongFileCount + record.Line);
    return;
  }
  ZelChannel* const channel = FindChannel(record.Fields[3]);
  if (!channel) {
    Error("Cannot find channel " + record.Fields[3]);
    return;
  }
  // Which traces are shown is taken when all are known: until then those of the file would mix with
  // those from before.
  loaded_.push_back({channel, IsOn(record.Fields[4])});
  if (const auto scale = ToNumber(record.Fields[5])) SetVerticalScale(*channel, *scale);
  if (const auto offset = ToNumber(record.Fields[6])) SetVerticalOffset(*channel, *offset);
  if (IsOn(record.Fields[7])) SetHorizontalChannel(*channel);
  if (const auto scale = ToNumber(record.Fields[8])) SetHorizontalScale(*channel, *scale);
  if (const auto offset = ToNumber(record.Fields[9])) SetHorizontalOffset(*channel, *offset);
}

void ZelScope::LoadTriggerRecord(const Record& record) {
  if (record.Fields.size() != TriggerEntries) {
    Error(WrongCount + record.Line);
    return;
  }
  const std::string& value = record.Fields[4];
  if (record.Fields[3] == "Channel") {
    ZelChannel* const source = FindChannel(value);
    if (source && (source != &TimeChannel() || Channels().empty())) {
      trigger_->SetSource(*source);
    } else {
      Error("Trigger Channel Invalid");
    }
  } else if (record.Fields[3] == "StopModel") {
    SetStopsModel(IsOn(value));
  } else if (!LoadTrigger(record, *trigger_)) {
    Error("Error:  Cannot load line: " + record.Line);
  }
}

void ZelScope::LoadConstForm(const Record& record) {
  if (record.Fields.size() != ConstFormEntries) {
    Error(WrongCount + record.Line);
    return;
  }
  const std::optional<int> width = ToInteger(record.Fields[4]);
  const std::optional<int> nameWidth = ToInteger(record.Fields[5]);
  if (!width || !nameWidth) return;
  SetConstForm({IsOn(record.Fields[3]), *width, *nameWidth});
}

void ZelScope::LoadCursors(const Record& record) {
  SetCursorMode(ToInteger(record.Field(3)).value_or(0));
  for (std::size_t cursor = 0; cursor < cursors_.X.size(); ++cursor) {
    SetCursorX(cursor, ToInteger(record.Field(4 + cursor)).value_or(0));
  }
}

void ZelScope::LoadKept(const Record& record) {
  kept_.Restore({ToInteger(record.Field(3)).value_or(0), ToInteger(record.Field(4)).value_or(0)});
}

void ZelScope::LoadColours(const Record& record) {
  std::istringstream colours(record.Field(3));
  loadedColours_.assign(std::istream_iterator<int>(colours), {});
}

// Traces of a file have their colours anew; those that an undo brings back have the ones from then.
void ZelScope::FinishLoading(const std::function<void(int line)>& atLine) {
  for (const LoadedTrace& trace : loaded_) trace.Channel->displayed_ = trace.Displayed;
  const bool restored = std::exchange(restoring_, false);
  for (std::size_t i = 0; i < Channels().size(); ++i) {
    const bool known = i < loadedColours_.size();
    if (known) Channels()[i]->colour_ = loadedColours_[i];
    if (!known && !restored && !loaded_.empty()) Channels()[i]->colour_ = -1;
  }
  loaded_.clear();
  loadedColours_.clear();
  AssignColours();
  if (!restored) SetSampleInterval();
  Instrument::FinishLoading(atLine);
}

}  // namespace torvane
